// Manual pages, made of the list of options.
#include <algorithm>
#include <sstream>

#include "orlune/command/command_line.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

// Text as man takes it: no dashes that become hyphens, no line that begins like a request.
std::string Escaped(const std::string& text) {
  std::string escaped;
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && (c == '.' || c == '\'')) escaped += "\\&";
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
    lineStart = c == '\n';
  }
  return escaped;
}

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

// "--range LEVELS"
std::string OptionText(const CLI::Option& option) {
  std::string text;
  for (const std::string& name : option.get_snames())
    text += ", \\fB" + Escaped("-" + name) + "\\fR";
  for (const std::string& name : option.get_lnames()) {
    text += ", \\fB" + Escaped("--" + name) + "\\fR";
  }
  text.erase(0, 2);
  const std::string type = option.get_type_size() == 0 ? "" : option.get_type_name();
  if (!type.empty()) text += " \\fI" + Escaped(type) + "\\fR";
  return text;
}

void PutOptions(std::ostream& out, const CLI::App& command) {
  for (const std::string& group : command.get_groups()) {
    bool headed = false;
    for (const CLI::Option* option : command.get_options()) {
      if (option->get_group() != group || option->get_positional()) continue;
      if (!headed && group != "Options") out << ".SS " << Escaped(group) << '\n';
      headed = true;
      out << ".TP\n"
          << OptionText(*option) << '\n'
          << Escaped(OneLine(option->get_description())) << '\n';
    }
  }
}

// The footer's paragraphs: those with a heading of their own become sections.
void PutFooter(std::ostream& out, const std::string& footer) {
  std::istringstream lines(footer);
  bool block = false;
  const auto endBlock = [&] {
    if (block) out << ".fi\n";
    block = false;
  };
  for (std::string line; std::getline(lines, line);) {
    const bool heading = line.size() > 1 && line[0] != ' ' && line.back() == ':';
    if (heading) {
      endBlock();
      out << ".SH " << Escaped(line.substr(0, line.size() - 1)) << "\n.nf\n";
      block = true;
    } else if (line.empty()) {
      out << (block ? "\n" : ".PP\n");
    } else {
      out << Escaped(line) << '\n';
    }
  }
  endBlock();
}

std::string Synopsis(const CLI::App& command, const std::string& name) {
  std::string text = "\\fB" + Escaped(name) + "\\fR [\\fIOPTIONS\\fR]";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional()) continue;
    const std::string word = option->get_name();
    const bool many = option->get_expected_max() > 1;
    const std::string shown = "\\fI" + Escaped(word) + "\\fR" + (many ? "..." : "");
    text += option->get_required() ? " " + shown : " [" + shown + "]";
  }
  return text;
}

}  // namespace

std::string ManualPage(const CommandLine& line, const CLI::App& command) {
  const bool whole = &command == &line.app();
  const std::string page = whole ? "orlune" : "orlune-" + command.get_name();
  const std::string name = whole ? "orlune" : "orlune " + command.get_name();
  std::ostringstream out;
  std::string title = page;
  std::transform(title.begin(), title.end(), title.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  out << ".TH " << Escaped(title) << " 1 \"\" \"orlune " << ORLUNE_VERSION << "\"\n"
      << ".SH NAME\n"
      << Escaped(page) << " \\- "
      << Escaped(whole ? "find, measure and list the particles of picture files"
                       : command.get_description())
      << "\n.SH SYNOPSIS\n";
  if (whole) {
    out << "\\fBorlune\\fR \\fICOMMAND\\fR [\\fIARGUMENTS\\fR]\n.SH COMMANDS\n";
    for (const CLI::App* other : line.Commands()) {
      out << ".TP\n\\fB" << Escaped(other->get_name()) << "\\fR\n"
          << Escaped(other->get_description()) << '\n';
    }
  } else {
    out << Synopsis(command, name) << '\n';
  }
  out << ".SH DESCRIPTION\n" << Escaped(command.get_description()) << "\n.SH OPTIONS\n";
  PutOptions(out, command);
  PutFooter(out, command.get_footer());
  out << ".SH SEE ALSO\n"
      << Escaped(whole ? "orlune-inspect(1), orlune-filter(1)" : "orlune(1)") << '\n';
  return out.str();
}

}  // namespace front

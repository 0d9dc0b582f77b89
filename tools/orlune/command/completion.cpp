// Completions of the command line for shells, made of the list of options.
#include <algorithm>
#include <sstream>

#include "orlune/command/command_line.h"

namespace front {
namespace {

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> NamesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool TakesValue(const CLI::Option& option) {
  return option.get_type_size() != 0;
}

// The first line, without what would end a quoted text.
std::string Meaning(const std::string& description) {
  std::string meaning;
  for (const char c : description) {
    if (c == '\'' || c == '"' || c == '[' || c == ']' || c == ':') continue;
    meaning += c == '\n' ? ' ' : c;
  }
  return meaning;
}

// The words that stand for the command's first argument; empty where that is a file.
std::vector<std::string> PositionalChoices(const CommandLine& line, const CLI::App& command) {
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional()) return line.ChoicesOf(*option);
  }
  return {};
}

bool TakesFiles(const CommandLine& line, const CLI::App& command) {
  const std::vector<const CLI::Option*> options = command.get_options();
  return std::any_of(options.begin(), options.end(), [&](const CLI::Option* option) {
    return option->get_positional() && line.ChoicesOf(*option).empty();
  });
}

std::string CommandNames(const CommandLine& line) {
  std::vector<std::string> names;
  for (const CLI::App* command : line.Commands()) names.push_back(command->get_name());
  return Joined(names);
}

std::string Bash(const CommandLine& line) {
  std::ostringstream out;
  out << "# bash completion of orlune\n_orlune() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} former=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  COMPREPLY=()\n  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    COMPREPLY=($(compgen -W \""
      << CommandNames(line) << " --help --version\" -- \"$word\"))\n    return\n  fi\n"
      << "  case ${COMP_WORDS[1]} in\n";
  for (const CLI::App* command : line.Commands()) {
    out << "    " << command->get_name() << ")\n      case $former in\n";
    std::vector<std::string> all;
    for (const CLI::Option* option : command->get_options()) {
      const std::vector<std::string> names = NamesOf(*option);
      all.insert(all.end(), names.begin(), names.end());
      if (names.empty() || !TakesValue(*option)) continue;
      out << "        ";
      for (size_t i = 0; i < names.size(); ++i) out << (i > 0 ? " | " : "") << names[i];
      const std::vector<std::string> choices = line.ChoicesOf(*option);
      out << (choices.empty()
                  ? ") COMPREPLY=($(compgen -f -- \"$word\")) ;;\n"
                  : ") COMPREPLY=($(compgen -W \"" + Joined(choices) + "\" -- \"$word\")) ;;\n");
    }
    const std::vector<std::string> choices = PositionalChoices(line, *command);
    out << "        *)\n          if [[ $word == -* ]]; then\n"
        << "            COMPREPLY=($(compgen -W \"" << Joined(all) << "\" -- \"$word\"))\n"
        << "          else\n            COMPREPLY=($(compgen "
        << (choices.empty() ? "-f" : "-W \"" + Joined(choices) + "\"")
        << (!choices.empty() && TakesFiles(line, *command) ? " -f" : "")
        << " -- \"$word\"))\n          fi\n          ;;\n      esac\n      ;;\n";
  }
  out << "  esac\n}\ncomplete -o filenames -F _orlune orlune\n";
  return out.str();
}

std::string Zsh(const CommandLine& line) {
  std::ostringstream out;
  out << "#compdef orlune\nif (( CURRENT == 2 )); then\n  local -a commands=(\n";
  for (const CLI::App* command : line.Commands()) {
    out << "    '" << command->get_name() << ":" << Meaning(command->get_description()) << "'\n";
  }
  out << "  )\n  _describe command commands\n  return\nfi\nlocal command=$words[2]\n"
         "shift words\n(( CURRENT-- ))\ncase $command in\n";
  for (const CLI::App* command : line.Commands()) {
    out << "  " << command->get_name() << ")\n    _arguments";
    for (const CLI::Option* option : command->get_options()) {
      for (const std::string& name : NamesOf(*option)) {
        out << " \\\n      '" << name << '[' << Meaning(option->get_description()) << ']';
        if (TakesValue(*option)) {
          const std::vector<std::string> choices = line.ChoicesOf(*option);
          out << ":value:" << (choices.empty() ? "_files" : "(" + Joined(choices) + ")");
        }
        out << '\'';
      }
    }
    const std::vector<std::string> choices = PositionalChoices(line, *command);
    const std::string words = "(" + Joined(choices) + ")";
    if (choices.empty()) {
      out << " \\\n      '*:argument:_files'";
    } else if (TakesFiles(line, *command)) {
      out << " \\\n      '1:argument:" << words << "' \\\n      '*:argument:_files'";
    } else {
      out << " \\\n      '*:argument:" << words << '\'';
    }
    out << "\n    ;;\n";
  }
  out << "esac\n";
  return out.str();
}

std::string Fish(const CommandLine& line) {
  std::ostringstream out;
  out << "# fish completion of orlune\n";
  for (const CLI::App* command : line.Commands()) {
    const std::string name = command->get_name();
    out << "complete -c orlune -f -n __fish_use_subcommand -a " << name << " -d '"
        << Meaning(command->get_description()) << "'\n";
    const std::string here = "complete -c orlune -n '__fish_seen_subcommand_from " + name + "'";
    const std::vector<std::string> own = PositionalChoices(line, *command);
    if (!own.empty()) {
      out << here << (TakesFiles(line, *command) ? "" : " -f") << " -a '" << Joined(own) << "'\n";
    }
    for (const CLI::Option* option : command->get_options()) {
      if (option->get_positional()) continue;
      out << here;
      for (const std::string& letter : option->get_snames()) out << " -s " << letter;
      for (const std::string& word : option->get_lnames()) out << " -l " << word;
      const std::vector<std::string> choices = line.ChoicesOf(*option);
      if (!choices.empty()) {
        out << " -x -a '" << Joined(choices) << "'";
      } else if (TakesValue(*option)) {
        out << " -r";
      }
      out << " -d '" << Meaning(option->get_description()) << "'\n";
    }
  }
  return out.str();
}

}  // namespace

std::string Completions(const CommandLine& line, const std::string& shell) {
  if (shell == "bash") return Bash(line);
  if (shell == "zsh") return Zsh(line);
  return shell == "fish" ? Fish(line) : "";
}

}  // namespace front

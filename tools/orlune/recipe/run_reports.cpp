// What recipes found, for people and for programs.
#include "orlune/recipe/run_reports.h"

#include <cmath>

#include "orlune/shared/numbers.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"

namespace front {
namespace {

constexpr size_t MOST_SHOWN = 12;  // values of a step in the table: the rest are in the reports

std::string NumberOf(const StepValue& value) {
  return value.number && std::isfinite(*value.number) ? Exact(*value.number) : "";
}

// "head 2.998 mm", "text 127.5"
std::string TextOf(const StepValue& value) {
  std::string text = value.name + ' ';
  if (!value.text.empty()) {
    text += LineText(value.text);
  } else if (value.number) {
    text += Short(*value.number) + (value.unit.empty() ? "" : " " + value.unit);
  } else {
    text += '-';
  }
  return value.verdict == Verdict::Failed ? text + " (!)" : text;
}

// The values of the whole picture, as one line.
std::string ValuesText(const StepResult& step) {
  std::string text;
  size_t shown = 0;
  for (const StepValue& value : step.values) {
    if (!value.object.empty()) continue;
    if (shown++ == MOST_SHOWN) return text + ", ...";
    text += (text.empty() ? "" : ", ") + TextOf(value);
  }
  return text;
}

std::string JsonValueOf(const StepValue& value) {
  std::string record = "{";
  if (!value.object.empty()) record += "\"object\": " + JsonText(value.object) + ", ";
  record += "\"name\": " + JsonText(value.name) +
            ", \"value\": " + (value.number ? JsonNumber(*value.number) : "null");
  if (!value.text.empty()) record += ", \"text\": " + JsonText(value.text);
  if (!value.unit.empty()) record += ", \"unit\": " + JsonText(value.unit);
  if (value.verdict != Verdict::None) {
    record += ", \"verdict\": " + JsonText(std::string(NameOf(value.verdict)));
  }
  return record + "}";
}

std::string JsonStepOf(const StepResult& step) {
  std::string record = "{\"step\": " + JsonText(step.step) + ", \"verdict\": ";
  record += step.verdict == Verdict::None ? "null" : JsonText(std::string(NameOf(step.verdict)));
  if (!step.reason.empty()) record += ", \"reason\": " + JsonText(step.reason);
  record += ", \"values\": [";
  for (size_t i = 0; i < step.values.size(); i++) {
    record += (i == 0 ? "" : ", ") + JsonValueOf(step.values[i]);
  }
  return record + "]}";
}

std::string HtmlText(const std::string& text) {
  std::string safe;
  for (const char c : ReadableText(text)) {
    if (c == '<') {
      safe += "&lt;";
    } else if (c == '>') {
      safe += "&gt;";
    } else if (c == '&') {
      safe += "&amp;";
    } else if (c == '"') {
      safe += "&quot;";
    } else {
      safe += c;
    }
  }
  return safe;
}

std::string Base64(const std::string& bytes) {
  constexpr char DIGITS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const auto byte = [&](size_t at) {
      return at < bytes.size() ? uint32_t{static_cast<unsigned char>(bytes[at])} : 0;
    };
    const uint32_t three = byte(i) << 16 | byte(i + 1) << 8 | byte(i + 2);
    text += DIGITS[three >> 18 & 63];
    text += DIGITS[three >> 12 & 63];
    text += i + 1 < bytes.size() ? DIGITS[three >> 6 & 63] : '=';
    text += i + 2 < bytes.size() ? DIGITS[three & 63] : '=';
  }
  return text;
}

constexpr char HTML_STYLE[] = R"(
body { font: 15px/1.45 sans-serif; margin: 2em auto; max-width: 70em; padding: 0 1em; color: #222; }
.picture { border: 1px solid #ccc; border-left: 8px solid #2a2; margin: 1em 0; padding: .6em 1em;
           display: flex; gap: 1.2em; align-items: flex-start; flex-wrap: wrap; }
.failed { border-left-color: #d33; } .error { border-left-color: #d90; }
.picture h2 { font-size: 1.05em; margin: 0 0 .3em; overflow-wrap: anywhere; }
.picture img { max-width: 320px; background: #eee; }
table { border-collapse: collapse; font-size: .93em; }
td, th { padding: .1em .8em .1em 0; text-align: left; vertical-align: top; }
td.number { text-align: right; font-variant-numeric: tabular-nums; }
tr.failed td { color: #c11; font-weight: bold; }
pre { background: #f5f5f5; padding: 1em; overflow: auto; }
)";

std::string HtmlRow(const StepResult& step, const StepValue& value) {
  std::string row = value.verdict == Verdict::Failed ? "<tr class=\"failed\">" : "<tr>";
  row += "<td>" + HtmlText(step.step) + "</td><td>" + HtmlText(value.object) + "</td><td>" +
         HtmlText(value.name) + "</td><td class=\"number\">";
  row += value.text.empty() ? (value.number ? Short(*value.number) : "-") : HtmlText(value.text);
  return row + "</td><td>" + HtmlText(value.unit) + "</td></tr>\n";
}

}  // namespace

void RunCounts::Add(Verdict verdict) {
  if (verdict == Verdict::Error) {
    errors++;
  } else {
    (verdict == Verdict::Failed ? failed : passed)++;
  }
}

void PrintVerdict(std::ostream& out, const PictureResult& result) {
  out << LineText(result.file) << ": " << NameOf(result.verdict);
  if (!result.reason.empty()) out << ": " << LineText(result.reason);
  out << '\n';
}

void PrintResult(std::ostream& out, const PictureResult& result) {
  PrintVerdict(out, result);
  for (const StepResult& step : result.steps) {
    const std::string values = ValuesText(step);
    if (!values.empty()) out << "  " << LineText(step.step) << ": " << values << '\n';
  }
}

std::string RunCsvHead() {
  return "File,Step,Object,Name,Value,Text,Unit,Verdict\n";
}

std::string CsvRows(const PictureResult& result) {
  const std::string file = CsvText(result.file) + ',';
  std::string rows =
      file + ",,picture,," + CsvText(result.reason) + ",," + std::string(NameOf(result.verdict));
  rows += '\n';
  const auto add = [&](std::string_view text, char end) { rows.append(text) += end; };
  for (const StepResult& step : result.steps) {
    const std::string head = file + CsvText(step.step) + ',';
    for (const StepValue& value : step.values) {
      rows += head;
      add(value.object, ',');
      add(CsvText(value.name), ',');
      add(NumberOf(value), ',');
      add(CsvText(value.text), ',');
      add(CsvText(value.unit), ',');
      add(NameOf(value.verdict), '\n');
    }
  }
  return rows;
}

std::string JsonLine(const PictureResult& result) {
  std::string record = "{\"file\": " + JsonText(result.file) +
                       ", \"verdict\": " + JsonText(std::string(NameOf(result.verdict)));
  if (!result.reason.empty()) record += ", \"reason\": " + JsonText(result.reason);
  record += ", \"steps\": [";
  for (size_t i = 0; i < result.steps.size(); i++) {
    record += (i == 0 ? "" : ", ") + JsonStepOf(result.steps[i]);
  }
  return record + "]}\n";
}

std::string HtmlHead(const Recipe& recipe) {
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
         HtmlText(recipe.name) + "</title>\n<style>" + HTML_STYLE +
         "</style>\n</head>\n<body>\n<h1>" + HtmlText(recipe.name) +
         "</h1>\n<details><summary>The recipe</summary><pre>" + HtmlText(recipe.text) +
         "</pre></details>\n";
}

std::string HtmlOf(const PictureResult& result) {
  const std::string verdict(NameOf(result.verdict));
  std::string text = "<div class=\"picture " + verdict + "\">\n";
  if (!result.thumbnail.empty()) {
    text += "<img alt=\"\" src=\"data:image/png;base64," + Base64(result.thumbnail) + "\">\n";
  }
  text += "<div><h2>" + HtmlText(result.file) + ": " + verdict + "</h2>\n";
  if (!result.reason.empty()) text += "<p>" + HtmlText(result.reason) + "</p>\n";
  std::string rows;
  for (const StepResult& step : result.steps) {
    for (const StepValue& value : step.values) rows += HtmlRow(step, value);
  }
  if (!rows.empty()) {
    text += "<details" + std::string(rows.size() < 3000 ? " open" : "") +
            "><summary>Values</summary><table>\n" + rows + "</table></details>\n";
  }
  return text + "</div></div>\n";
}

std::string HtmlEnd(const RunCounts& counts, bool whole) {
  return "<p>" + Plural(counts.All(), "picture") + ": " + std::to_string(counts.passed) +
         " passed, " + std::to_string(counts.failed) + " failed, " + std::to_string(counts.errors) +
         " without a verdict" + (whole ? "" : "; the run was stopped before its end") +
         ".</p>\n</body>\n</html>\n";
}

}  // namespace front

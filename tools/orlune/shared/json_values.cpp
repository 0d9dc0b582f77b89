// JSON objects of set-up files: texts without escapes but those of quotes, no null.
#include "orlune/shared/json_values.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>

#include "orlune/shared/interrupts.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

constexpr size_t MOST_BYTES_OF_SETUP = 1 << 20;
constexpr int DEEPEST = 8;  // lists and objects inside each other

// A file that is open to be read. Throws std::invalid_argument.
class FileNumber {
 public:
  explicit FileNumber(const std::string& path)
      : number_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (number_ < 0) throw std::invalid_argument("cannot be read");
  }
  ~FileNumber() { ::close(number_); }
  FileNumber(const FileNumber&) = delete;
  FileNumber& operator=(const FileNumber&) = delete;
  int number() const { return number_; }

 private:
  int number_;
};

class Parser {
 public:
  explicit Parser(const std::string& text) : text_(text) {}

  JsonObject Parse() {
    JsonObject object = Object(DEEPEST);
    if (Next() != 0) Fail("something follows behind its end");
    return object;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw std::invalid_argument("no set-up: " + what + " (byte " + std::to_string(at_) + ")");
  }
  // Without what may stand between words; 0 at the end.
  char Next() {
    while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != std::string::npos)
      at_++;
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  bool Takes(char wanted) {
    if (Next() != wanted) return false;
    at_++;
    return true;
  }
  void Expect(char wanted) {
    if (!Takes(wanted)) Fail(std::string("a ") + wanted + " is missing");
  }
  std::string Text() {
    Expect('"');
    std::string text;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (text_[at_] == '\\' && ++at_ < text_.size() && text_[at_] != '"' && text_[at_] != '\\') {
        Fail("texts have no other escapes than of quotes");
      }
      if (at_ < text_.size()) text += text_[at_++];
    }
    if (at_++ >= text_.size()) Fail("a text does not end");
    return text;
  }
  double Number() {
    Next();
    size_t end = at_;
    while (end < text_.size() &&
           std::string_view("+-.0123456789eE").find(text_[end]) != std::string::npos) {
      end++;
    }
    try {
      const double number = ParseNumber(std::string_view(text_).substr(at_, end - at_));
      at_ = end;
      return number;
    } catch (const std::invalid_argument& error) {
      Fail(error.what());
    }
  }
  JsonList List(int depth) {
    JsonList list;
    Expect('[');
    while (!Takes(']')) {
      if (!list.empty()) Expect(',');
      list.push_back(Value(depth));
    }
    return list;
  }
  JsonObject Object(int depth) {
    JsonObject object;
    Expect('{');
    while (!Takes('}')) {
      if (!object.empty()) Expect(',');
      const std::string name = Text();
      Expect(':');
      const auto isSame = [&](const JsonMember& member) { return member.name == name; };
      if (std::any_of(object.begin(), object.end(), isSame)) {
        Fail(Quoted(name) + " stands there twice");
      }
      object.push_back({name, Value(depth)});
    }
    return object;
  }
  JsonValue Value(int depth) {
    const char first = Next();
    if (first == '"') return {Text()};
    if (first == '[' || first == '{') {
      if (depth == 0) Fail("too many lists inside each other");
      if (first == '[') return {List(depth - 1)};
      return {Object(depth - 1)};
    }
    for (const bool truth : {true, false}) {
      const std::string_view word = truth ? "true" : "false";
      if (text_.compare(at_, word.size(), word) != 0) continue;
      at_ += word.size();
      return {truth};
    }
    return {Number()};
  }

  const std::string& text_;
  size_t at_ = 0;
};

// Whether all values of a list are numbers, which are then put into the other one.
bool TakeAllNumbers(const JsonList& list, Numbers* numbers) {
  for (const JsonValue& value : list) {
    const double* number = std::get_if<double>(&value.value);
    if (number == nullptr) return false;
    numbers->push_back(*number);
  }
  return true;
}

}  // namespace

JsonObject ParseJsonObject(const std::string& text) {
  return Parser(text).Parse();
}

const JsonValue* Members::Find(const std::string& name) const {
  asked_.insert(name);
  const auto found = std::find_if(object_.begin(), object_.end(),
                                  [&](const JsonMember& member) { return member.name == name; });
  return found == object_.end() ? nullptr : &found->value;
}

void Members::ComplainOfKind(const std::string& name) {
  throw std::invalid_argument("no set-up: " + Quoted(name) + " is of a wrong kind");
}

Numbers Members::TakeNumbers(const std::string& name) const {
  Numbers numbers(1);
  if (Is<double>(name) && Take(name, &numbers[0])) return numbers;
  JsonList list;
  numbers.clear();
  if (Take(name, &list) && !TakeAllNumbers(list, &numbers)) ComplainOfKind(name);
  return numbers;
}

std::vector<Numbers> Members::TakeLists(const std::string& name) const {
  JsonList list;
  if (!Take(name, &list)) return {};
  Numbers alone;
  if (!list.empty() && TakeAllNumbers(list, &alone)) return {alone};
  std::vector<Numbers> lists;
  for (const JsonValue& value : list) {
    const JsonList* inner = std::get_if<JsonList>(&value.value);
    lists.emplace_back();
    if (inner == nullptr || !TakeAllNumbers(*inner, &lists.back())) ComplainOfKind(name);
  }
  return lists;
}

void Members::RefuseOthers() const {
  for (const JsonMember& member : object_) {
    if (asked_.contains(member.name)) continue;
    const std::vector<std::string_view> names(asked_.begin(), asked_.end());
    throw std::invalid_argument("no set-up: there is no " + Quoted(member.name) +
                                Suggestion(member.name, names));
  }
}

// Never waits where an interrupt could not end it: a pipe may have no writer for ever.
std::string ReadSetupFile(const std::string& path) {
  const FileNumber file(path);
  std::vector<pollfd> files{{.fd = file.number(), .events = POLLIN, .revents = 0}};
  std::string text(MOST_BYTES_OF_SETUP, '\0');
  size_t filled = 0;
  bool waits = true;  // an empty pipe without a writer reads as an end, also before its first one
  while (filled < text.size()) {
    if (waits) PollUntilInterrupted(&files, -1);
    if (Interrupted() != 0) throw std::invalid_argument("was not read: interrupted");
    const ssize_t count = ::read(file.number(), text.data() + filled, text.size() - filled);
    waits = count < 0 && errno == EAGAIN;
    if (waits || (count < 0 && errno == EINTR)) continue;
    if (count < 0) throw std::invalid_argument("cannot be read");
    if (count == 0) {
      text.resize(filled);
      return text;
    }
    filled += static_cast<size_t>(count);
  }
  throw std::invalid_argument("too long for a set-up");
}

}  // namespace front

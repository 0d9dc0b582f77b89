// JSON objects of set-up files, and their members by name and kind.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace front {

struct JsonValue;
struct JsonMember;
using JsonList = std::vector<JsonValue>;
using JsonObject = std::vector<JsonMember>;  // in the order of the text

struct JsonValue {
  std::variant<bool, double, std::string, JsonList, JsonObject> value;
};
struct JsonMember {
  std::string name;
  JsonValue value;
};

// Throws std::invalid_argument for a text that is no object, or has a name twice in one.
JsonObject ParseJsonObject(const std::string& text);

using Numbers = std::vector<double>;

// The members of an object, each of the kind that it is asked for as. All throw
// std::invalid_argument where the member is of another kind.
class Members {
 public:
  // The object has to live as long as this.
  explicit Members(const JsonObject& object) : object_(object) {}

  // Leaves a value as it is, and returns false, where the object says nothing.
  template <class T>
  bool Take(const std::string& name, T* value) const {
    const JsonValue* found = Find(name);
    if (found == nullptr) return false;
    const T* given = std::get_if<T>(&found->value);
    if (given == nullptr) ComplainOfKind(name);
    *value = *given;
    return true;
  }
  template <class T>
  bool Is(const std::string& name) const {
    const JsonValue* found = Find(name);
    return found != nullptr && std::holds_alternative<T>(found->value);
  }
  // A list of numbers, or one alone; empty where the object says nothing.
  Numbers TakeNumbers(const std::string& name) const;
  // A list of such lists, or one alone.
  std::vector<Numbers> TakeLists(const std::string& name) const;

  // Throws for a member that was never asked for, with the nearest name that was.
  void RefuseOthers() const;

 private:
  const JsonValue* Find(const std::string& name) const;
  [[noreturn]] static void ComplainOfKind(const std::string& name);

  const JsonObject& object_;
  mutable std::set<std::string> asked_;
};

// A whole set-up file. Throws std::invalid_argument.
std::string ReadSetupFile(const std::string& path);

}  // namespace front

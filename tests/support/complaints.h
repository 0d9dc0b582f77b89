// What tests ask of failures: the words of an exception, and texts within texts.
#pragma once

#include <exception>
#include <string>

namespace test {

template <class Function>
std::string Complaint(Function function) {
  try {
    function();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "no complaint";
}

inline bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace test

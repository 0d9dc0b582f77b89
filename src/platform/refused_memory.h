// What an operation answers when the machine refuses memory inside it. The bodies of the desktop
// and the fonts keep lists and texts in containers of the standard library, which throw then:
// nobody above these records could catch that, and the program would end.
#pragma once

#include <new>

namespace zel {

template <auto operation, auto... answer>
struct Guard;
template <class Result, class... Argument, Result (*operation)(Argument...), auto... answer>
struct Guard<operation, answer...> {
  static Result Call(Argument... arguments) {
    try {
      return operation(arguments...);
    } catch (const std::bad_alloc&) {
      return Result(answer...);
    }
  }
};

// The operation for a record; without an answer it is nothing, or 0.
template <auto operation, auto... answer>
constexpr auto GUARDED = &Guard<operation, answer...>::Call;

}  // namespace zel

// A JSON value of a description that is being written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "machine/description/node.h"

namespace machine::description {

// Refers to a value of the document and is copied like a pointer. An Output from Key() or Entry() is valid
// until the next one is taken from the same object or list.
class Output {
  public:
    // `whole`: with the keys that could be left out because they have their standard values.
    explicit Output(Json& value, bool whole = false) : value_(&value), whole_(whole) {}

    bool IsWhole() const { return whole_; }

    void Null() const;
    void Text(const std::string& text) const;
    void Flag(bool flag) const;
    void Number(uint64_t number) const;
    void NegativeNumber(int64_t number) const;
    // An empty object, and the value of a key in it, which is null at first.
    void Object() const;
    Output Key(std::string_view key) const;
    // An empty list, and a new entry of it, which is null at first.
    void List() const;
    Output Entry() const;

  private:
    Json* value_;
    bool whole_;
};

// Whether JSON can hold the text, which must be UTF-8.
bool IsJsonText(const std::string& text);

}  // namespace machine::description

// Where the platform calls of the library pass by: a recording that is made, or one that answers in place of
// the PC.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "platform/windows_api.h"

// A recording that is not what it should be; the text says how.
class DamagedRecording : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Handles of one run by numbers, so that a recording names them the same everywhere.
class HandleNumbers {
  public:
    // A handle that a call has returned. Null, INVALID_HANDLE_VALUE and the predefined keys keep their value.
    nlohmann::ordered_json Add(const void* handle);
    // One that the library passes.
    nlohmann::ordered_json NameOf(const void* handle) const;
    // The handle of that name, made up if it is a number, and known from then on. Throws DamagedRecording.
    void* Restore(const nlohmann::ordered_json& name);

  private:
    std::map<const void*, uint64_t> numbers_;
    uint64_t last_ = 0;
};

// What is between the library and an object of the platform.
class PassedObject {
  public:
    PassedObject() = default;
    virtual ~PassedObject() = default;
    PassedObject(const PassedObject&) = delete;
    PassedObject& operator=(const PassedObject&) = delete;
};

struct KnownObject {
    uint64_t number = 0;
    IUnknown* platform = nullptr;  // null in a replay
    std::unique_ptr<PassedObject> passed;
};

class Tape {
  public:
    using Json = nlohmann::ordered_json;

    Tape() = default;
    virtual ~Tape() = default;
    Tape(const Tape&) = delete;
    Tape& operator=(const Tape&) = delete;

    // Whether it answers, and no call reaches a PC.
    virtual bool Answers() const = 0;
    // Something has happened, with all that is known of it: a line is added to a recording; the next line of
    // a replay must have all these keys with their values.
    virtual void Add(const Json& line) = 0;
    // The next line of a replay, which must have all keys of `asked` with their values. Null if it has not,
    // and from then on.
    virtual const Json* Next(const Json& asked) = 0;
    // The line that Next returned last cannot be what a call has answered.
    virtual void Reject(const std::string& why) = 0;

    HandleNumbers handles;
    // Those in the library's hands. One that it never releases goes with the tape, and the platform's object
    // stays unreleased as it would be without a tape.
    std::map<const IUnknown*, KnownObject> objects;
    uint64_t lastObject = 0;
    uint32_t lastError = 0;  // in a replay, as the library has it
};

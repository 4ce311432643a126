// Asks the class one question after another and keeps what could not be read or answered.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"

class Questions {
  public:
    explicit Questions(Session& session) : session_(session) {}

    // The answer to an operation of that name; that it could not be answered is a problem.
    OperationReport Ask(const char* operation, const Values& arguments = {});
    // The same for operations with the result 1 for yes, and for those that return a letter; nothing for '0'.
    bool IsYes(const char* operation, const Values& arguments = {});
    std::optional<WCHAR> AskLetter(const char* operation, const Values& arguments = {});

    // What could not be read, and what could not be found out. Each problem is kept once.
    void AddUnread(const std::string& problem);
    void AddUnread(const std::string& problem, unsigned long error);
    void AddUndetermined(const std::string& problem);
    bool HasReadAll() const { return hasReadAll_; }
    // In the order in which they were added, separated by "; ".
    std::string Problems() const;

    Session& On() { return session_; }

  private:
    Session& session_;
    std::vector<std::string> problems_;
    bool hasReadAll_ = true;
};

#include "tools/kestova/process/interruption.h"

void ExpectInterruption(const LastWords&) {}

void HoldInterruption() {}

void ForgetInterruption() {}

void SayWhenInterrupted(const std::string&) {}

void StopIfInterrupted() {}

void EndIfInterrupted(const LastWords&) {}

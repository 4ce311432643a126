// The slots of the logging library's interfaces, through which Kestova.dll and programs call it, for 64 and
// 32 bits. Every build but MSVC's compiles this file; it generates no code.

#include "logging/logging.h"
#include "platform/method_slots.h"

namespace {

// An interface with one method more, which is in the first free slot.
template <typename Interface>
class Extended : public Interface {
  public:
    virtual void First() = 0;

  protected:
    ~Extended() = default;
};

// The methods are all that an interface has, in this order.
template <typename Interface, typename... Methods>
[[gnu::always_inline]] inline void CheckAllSlots(Methods... methods) {
    static_assert(sizeof(Interface) == sizeof(void*));
    CheckSlotsFrom(0, methods..., &Extended<Interface>::First);
}

}  // namespace

void CheckSlotsOfILogSink() {
    CheckAllSlots<ILogSink>(&ILogSink::Write);
}

void CheckSlotsOfILogRecord() {
    CheckAllSlots<ILogRecord>(
        &ILogRecord::GetLevel, &ILogRecord::AppendString, &ILogRecord::AppendText, &ILogRecord::AppendPointer,
        &ILogRecord::AppendULong, &ILogRecord::AppendULongLong, &ILogRecord::AppendLong,
        &ILogRecord::AppendLongLong, &ILogRecord::AppendInt, &ILogRecord::AppendChar, &ILogRecord::IsEmpty);
}

void CheckSlotsOfILogger() {
    CheckAllSlots<ILogger>(&ILogger::AddSink, &ILogger::RemoveSink, &ILogger::BeginRecord,
                           &ILogger::EndRecord);
}

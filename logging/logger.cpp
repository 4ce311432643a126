#include "logging/logger.h"

#include <algorithm>
#include <mutex>
#include <string>

#include "logging/platform.h"

namespace {

using Text = std::basic_string<WCHAR>;

template <typename Number>
Text Digits(Number value) {
    const std::string ascii = std::to_string(value);
    return Text(ascii.begin(), ascii.end());
}

}  // namespace

template <typename Render>
ILogRecord& LogRecordInMemory::Append(LogItemKind kind, const Render& render) noexcept {
    const LastErrorKept kept;
    try {
        entry_.items.push_back({kind, render()});
    } catch (...) {
        return *this;
    }
    return *this;
}

void LogRecordInMemory::Begin(int level) {
    entry_.level = level;
    entry_.items.clear();
}

ILogRecord& LogRecordInMemory::AppendString(const Text& text) noexcept {
    return Append(LogItemKind::String, [&] { return text; });
}

ILogRecord& LogRecordInMemory::AppendText(const WCHAR* text) noexcept {
    return Append(LogItemKind::Text, [=] { return text != nullptr ? Text(text) : Text(); });
}

ILogRecord& LogRecordInMemory::AppendPointer(const void*) noexcept {
    return Append(LogItemKind::Pointer, [] { return Text(TEXT("<pointer>")); });
}

ILogRecord& LogRecordInMemory::AppendULong(ULONG value) noexcept {
    return Append(LogItemKind::ULong, [=] { return Digits(value); });
}

ILogRecord& LogRecordInMemory::AppendULongLong(ULONGLONG value) noexcept {
    return Append(LogItemKind::ULongLong, [=] { return Digits(value); });
}

ILogRecord& LogRecordInMemory::AppendLong(LONG value) noexcept {
    return Append(LogItemKind::Long, [=] { return Digits(value); });
}

ILogRecord& LogRecordInMemory::AppendLongLong(LONGLONG value) noexcept {
    return Append(LogItemKind::LongLong, [=] { return Digits(value); });
}

ILogRecord& LogRecordInMemory::AppendInt(INT value) noexcept {
    return Append(LogItemKind::Int, [=] { return Digits(value); });
}

ILogRecord& LogRecordInMemory::AppendChar(WCHAR value) noexcept {
    return Append(LogItemKind::Char, [=] { return Text(1, value); });
}

void Logger::AddSink(ILogSink& sink) noexcept {
    const LastErrorKept kept;
    const std::scoped_lock alone(lock_);
    if (std::find(sinks_.begin(), sinks_.end(), &sink) != sinks_.end()) return;
    try {
        sinks_.push_back(&sink);
    } catch (...) {
        return;
    }
}

void Logger::RemoveSink(ILogSink& sink) noexcept {
    const LastErrorKept kept;
    const std::scoped_lock alone(lock_);
    std::replace(sinks_.begin(), sinks_.end(), &sink, static_cast<ILogSink*>(nullptr));
    if (passing_ == 0) std::erase(sinks_, nullptr);
}

ILogRecord& Logger::BeginRecord(int level) noexcept {
    const LastErrorKept kept;
    lock_.lock();
    record_.Begin(level);
    return record_;
}

void Logger::EndRecord() noexcept {
    const LastErrorKept kept;
    if (ILogSink* const standard = StandardSink()) PassTo(*standard);
    PassToSinks();
    lock_.unlock();
}

// By index, and no further than the sinks that are there now: a sink may add and remove sinks meanwhile.
void Logger::PassToSinks() noexcept {
    ++passing_;
    const size_t count = sinks_.size();
    for (size_t at = 0; at < count; ++at)
        if (sinks_[at] != nullptr) PassTo(*sinks_[at]);
    if (--passing_ == 0) std::erase(sinks_, nullptr);
}

// An exception from a sink affects neither the operation that logs nor the other sinks.
void Logger::PassTo(ILogSink& sink) noexcept {
    try {
        sink.Write(record_.Entry());
    } catch (...) {
        return;
    }
}

#include "base/format.h"

namespace {

// Counts every unit and stores those that fit.
class BoundedWriter {
  public:
    BoundedWriter(WCHAR* buffer, size_t capacity)
        : buffer_(capacity > 0 ? buffer : nullptr), capacity_(capacity) {}

    void Put(WCHAR unit) {
        if (buffer_ != nullptr && count_ + 1 < capacity_) buffer_[count_] = unit;
        ++count_;
    }

    void Put(const WCHAR* text) {
        while (*text != 0)
            Put(*text++);
    }

    void PutUnsigned(unsigned value) {
        if (value >= 10) PutUnsigned(value / 10);
        Put(static_cast<WCHAR>(TEXT('0') + value % 10));
    }

    void PutSigned(int value) {
        if (value < 0) Put(TEXT('-'));
        PutUnsigned(value < 0 ? 0U - static_cast<unsigned>(value) : static_cast<unsigned>(value));
    }

    size_t Terminate() {
        if (buffer_ != nullptr) buffer_[count_ < capacity_ ? count_ : capacity_ - 1] = 0;
        return count_;
    }

  private:
    WCHAR* buffer_;
    size_t capacity_;
    size_t count_ = 0;
};

}  // namespace

size_t FormatBounded(WCHAR* buffer, size_t capacity, const WCHAR* format, va_list arguments) {
    BoundedWriter writer(buffer, capacity);
    for (const WCHAR* at = format; *at != 0; ++at) {
        if (*at != TEXT('%') || at[1] == 0) {
            writer.Put(*at);
            continue;
        }
        switch (*++at) {
            case TEXT('d'):
                writer.PutSigned(va_arg(arguments, int));
                break;
            case TEXT('u'):
                writer.PutUnsigned(va_arg(arguments, unsigned));
                break;
            case TEXT('c'):
                writer.Put(static_cast<WCHAR>(va_arg(arguments, int)));
                break;
            case TEXT('s'): {
                const WCHAR* text = va_arg(arguments, const WCHAR*);
                writer.Put(text != nullptr ? text : TEXT("(null)"));
                break;
            }
            default:
                writer.Put(*at);
        }
    }
    return writer.Terminate();
}

size_t FormatInto(WCHAR* buffer, size_t capacity, const WCHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const size_t count = FormatBounded(buffer, capacity, format, arguments);
    va_end(arguments);
    return count;
}

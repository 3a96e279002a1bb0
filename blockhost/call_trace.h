// CallTrace: one line of text per callback and per host call, with arguments and result, indented by nesting.
// The same run gives the same lines: no addresses, only names. Off, it costs one test per call and allocates nothing.
#pragma once

#include "dims.h"

#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace blockhost {

/// Receives one line without line end; valid for the duration of the call.
using TraceSink = std::function<void(std::string_view line)>;

// ---- Arguments that read better as something else than a number

/// A data-type id, written as its name.
struct TypeText {
    int typeId;
};
/// A dimensions mode, written as its name.
struct ModeText {
    int mode;
};
/// A dimension record; may be null.
struct DimsText {
    const sysobj::DimsInfo_tag* record;
};
/// A bit mask, written in base 16.
struct MaskText {
    std::uint32_t mask;
};
/// A text without quotes, such as the name of a buffer.
struct NameText {
    std::string_view name;
};
/// Any pointer: "null" or "non-null".
struct PointerText {
    const void* pointer;
};

/// "fixed", "variable" or "unset".
const char* modeName(int mode) noexcept;

/// Formats and delivers the lines.
class CallTrace {
public:
    void setSink(TraceSink sink) { mSink = std::move(sink); }
    bool isOn() const noexcept { return static_cast<bool>(mSink); }

    /// A call without result: "name(arg, arg)".
    template <typename... Args>
    void call(std::string_view name, const Args&... args) noexcept
    {
        write([&] { begin(name, args...); });
    }

    /// A call with result: "name(arg, arg) -> result".
    template <typename Result, typename... Args>
    void callWithResult(const Result& result, std::string_view name, const Args&... args) noexcept
    {
        write([&] {
            begin(name, args...);
            mLine += " -> ";
            append(result);
        });
    }

    /// Lines until the matching leave are nested one level deeper.
    void enter() noexcept { ++mDepth; }
    void leave() noexcept { --mDepth; }

    /// What a line failed with, once; null when nothing did. The trace is off from the failure on.
    std::exception_ptr takeFailure() noexcept { return std::exchange(mFailure, nullptr); }

private:
    /// Builds a line and delivers it. A failure is kept, so that the traced call and its result go on.
    template <typename Build>
    void write(Build build) noexcept
    {
        if (!isOn())
            return;
        try {
            build();
            mSink(mLine);
        } catch (...) {
            mFailure = std::current_exception();
            mSink = nullptr;
        }
    }

    template <typename... Args>
    void begin(std::string_view name, const Args&... args)
    {
        mLine.assign(static_cast<std::size_t>(2 * mDepth), ' ').append(name).append("(");
        [[maybe_unused]] const char* separator = "";
        ((mLine += separator, append(args), separator = ", "), ...);
        mLine += ')';
    }

    void append(bool value);
    void append(int value);
    void append(double value);
    void append(const char* text);
    void append(TypeText type);
    void append(ModeText mode);
    void append(DimsText dims);
    void append(MaskText mask);
    void append(NameText name);
    void append(PointerText pointer);
    void append(const resource_core::BaseMsgID& message);

    TraceSink mSink;
    std::exception_ptr mFailure;
    std::string mLine;
    int mDepth = 0;
};

}  // namespace blockhost

// The base of all exceptions and the kinds that the platform itself raises.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>
#include <hearth/runtime/text.h>

#include <exception>
#include <string>

namespace ht {

/// Base of every exception of the library. `what()` is the message as UTF-8.
class HT_API Exception : public std::exception {
public:
    explicit Exception(String message);
    explicit Exception(std::u16string_view message);
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    ~Exception() override;

    const char* what() const noexcept override { return FUtf8.c_str(); }
    /// The class name as shown to people ("EConvertError").
    virtual const char16_t* ClassName() const noexcept { return u"Exception"; }

    String Message;

private:
    std::string FUtf8;
};

/// Memory could not be had, or a container would pass its greatest size.
class HT_API EOutOfMemory : public Exception {
public:
    EOutOfMemory();
    const char16_t* ClassName() const noexcept override { return u"EOutOfMemory"; }
};

/// An index lies outside its array, or a value outside its type.
class HT_API ERangeError : public Exception {
public:
    using Exception::Exception;
    ERangeError();
    const char16_t* ClassName() const noexcept override { return u"ERangeError"; }
};

/// Integer arithmetic on lengths or indexes overflowed.
class HT_API EIntOverflow : public Exception {
public:
    EIntOverflow();
    const char16_t* ClassName() const noexcept override { return u"EIntOverflow"; }
};

/// An operation was called that only a descendant supplies.
class HT_API EAbstractError : public Exception {
public:
    EAbstractError();
    const char16_t* ClassName() const noexcept override { return u"EAbstractError"; }
};

/// A text is no number, date or value of the wanted type.
class HT_API EConvertError : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EConvertError"; }
};

/// An object or value is not of the class or type that was asked for.
class HT_API EInvalidCast : public Exception {
public:
    using Exception::Exception;
    EInvalidCast();
    const char16_t* ClassName() const noexcept override { return u"EInvalidCast"; }
};

/// A list was used against its rules (index, capacity, duplicates).
class HT_API EListError : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EListError"; }
};

/// A string list was used against its rules.
class HT_API EStringListError : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EStringListError"; }
};

/// A stream could not be opened, read, written or moved.
class HT_API EStreamError : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EStreamError"; }
};

/// A condition that the library relies on does not hold.
class HT_API EAssertionFailed : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EAssertionFailed"; }
};

/// Stays out of line like RaiseRangeError of text.h.
[[noreturn]] HT_API void RaiseIntOverflow();

}

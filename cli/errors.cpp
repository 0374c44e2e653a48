// Printing what ended a command.
// SPDX-License-Identifier: MIT
#include "errors.h"

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/streams.h>

#include <cstdio>
#include <exception>
#include <new>
#include <system_error>

namespace hearth_cli {

namespace {

/// The control character that begins here; 0 when there is none. From U+0080 on they have two bytes.
unsigned ControlAt(const char* text) noexcept
{
    const auto byte = static_cast<unsigned char>(text[0]);
    if (byte < ' ' || byte == 0x7F)
        return byte;
    const auto next = static_cast<unsigned char>(byte == 0xC2 ? text[1] : 0);
    return next >= 0x80 && next < 0xA0 ? next : 0;
}

/// A message may quote a server or the name of a file, which must neither command the terminal nor end the
/// line.
void PrintInLine(const char* text) noexcept
{
    for (const char* c = text; *c; ++c) {
        const unsigned control = ControlAt(c);
        if (control == 0)
            std::fputc(*c, stderr);
        else
            std::fprintf(stderr, "\\x%02X", control);
        c += control >= 0x80 ? 1 : 0;
    }
}

int Report(ExitStatus status, const char* message) noexcept
{
    std::fputs("hearth: ", stderr);
    PrintInLine(message);
    std::fputc('\n', stderr);
    return status;
}

// Memory may be what ran out: nothing is joined here, the pieces go out one by one.
int ReportRefusal(const ht::Exception& exception) noexcept
{
    std::fputs("hearth: ", stderr);
    for (const char16_t* name = exception.ClassName(); *name; ++name)
        std::fputc(static_cast<char>(*name), stderr);
    std::fputs(": ", stderr);
    PrintInLine(exception.what());
    std::fputc('\n', stderr);
    return esRefused;
}

}

FileError::FileError(const std::string& place, int error)
    : FileError(place, std::generic_category().message(error))
{
}

FileError::FileError(const std::string& place, const std::string& message)
    : std::runtime_error(place + ": " + message)
{
}

int ReportException() noexcept
{
    try {
        throw;
    } catch (const ht::EFileStreamError& error) {
        return Report(esFile, error.what());
    } catch (const ht::Exception& exception) {
        return ReportRefusal(exception);
    } catch (const UsageError& error) {
        return Report(esUsage, error.what());
    } catch (const InputError& error) {
        return Report(esRefused, error.what());
    } catch (const FileError& error) {
        return Report(esFile, error.what());
    } catch (const std::bad_alloc&) {
        return Report(esRefused, "EOutOfMemory: Out of memory");
    } catch (const std::exception& error) {
        return Report(esRefused, error.what());
    } catch (...) {
        return Report(esRefused, "unknown exception");
    }
}

}

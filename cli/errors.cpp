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

int Report(ExitStatus status, const char* message) noexcept
{
    std::fprintf(stderr, "hearth: %s\n", message);
    return status;
}

// Memory may be what ran out: nothing is joined here, the pieces go out one by one.
int ReportRefusal(const ht::Exception& exception) noexcept
{
    std::fputs("hearth: ", stderr);
    for (const char16_t* name = exception.ClassName(); *name; ++name)
        std::fputc(static_cast<char>(*name), stderr);
    std::fprintf(stderr, ": %s\n", exception.what());
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

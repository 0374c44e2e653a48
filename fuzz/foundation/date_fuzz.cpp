// Any text by any mask: the first line is the mask, empty for one that is guessed.
// SPDX-License-Identifier: MIT
#include "../require.h"

#include <hearth/foundation/date_text.h>
#include <hearth/runtime/exceptions.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ht::String input = ht::String::FromUtf8({reinterpret_cast<const char*>(data), size});
    const std::u16string_view view = input;
    const std::size_t end = std::min(view.find(u'\n'), view.size());
    const std::u16string_view mask = view.substr(0, end);
    const std::u16string_view text = view.substr(std::min(end + 1, view.size()));
    try {
        const ht::TDateTime value = ht::StrtoDateFmt(text, mask);
        // From the year 1 to the end of the year 9999.
        fuzz::Require(value > -693594 && value < 2958466, "a date that there is");
    } catch (const ht::Exception& error) {
        const ht::String start = ht::Concat({u"Date/time string '", text, u"' does not match mask '"});
        fuzz::Require(error.Message.View().starts_with(start) && error.Message.View().ends_with(u'\''),
            "the refusal names text and mask");
    }
    return 0;
}

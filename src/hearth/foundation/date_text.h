// Dates and times read from text by a mask.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/date_time.h>
#include <hearth/runtime/text.h>

namespace ht {

/// Reads the whole text by the mask `format`. Letters of either case: "dd", "mm", "hh", "nn" (minutes) and
/// "ss" are two digits, a single letter is one or two with a blank allowed in front; "mmm" is the English
/// name of a month cut to three letters, "mmmm" the full one, in any case; "yyyy" is four digits, "yy" two,
/// which mean 1950 to 2049. Quoted text and all else stand for themselves. "cisco" means "hh:nn:ss mmm d
/// yyyy" behind an optional "*". An empty format is guessed from the shape of the text: the mask of the same
/// length with the same separators ('.', '-', '/', ':', blank) in the same places, of
///   dd.mm.yyyy hh:nn:ss   dd.mm.yyyy h:nn:ss   dd.mm.yyyy hh:nn   dd.mm.yyyy h:nn   dd.mm.yy hh:nn
///   dd.mm.yy h:nn   dd-mm-yyyy hh:nn:ss   dd-mmm-yyyy hh:nn:ss   yyyy-mm-dd hh:nn:ss   dd.mm.yyyy   dd.mm.yy
///   mm/dd/yyyy   yyyy-mm-dd   dd-mmm-yyyy   m/dd/yyyy   mm/d/yyyy   m/d/yyyy   dd-mmm-yy
/// A mask without a date gives the time alone; parts of a date that it does not name are January, the 1st,
/// 1900. Throws Exception "Date/time string '...' does not match mask '...'", with an empty mask where none
/// is guessed.
HT_API TDateTime StrtoDateFmt(std::u16string_view text, std::u16string_view format);

}

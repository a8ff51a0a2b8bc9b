// Source scanning: the bracket-structure check, normalisation, and the three
// helpers with which every grammar level splits text outside brackets.
//
// Contract: `checkStructure` runs on the raw source, so its positions are
// byte indices of the file as written; `normalise` runs only on text that
// passed it, and the helpers below assume such text (an unbalanced bracket
// is a fatal assertion in them). Inside "[...]" only "[" and "]" count.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "runtime/report.h"

namespace tarn {

// True if the text is sound; otherwise fills the report ("match" or "comma")
// and sets `position` to the index named in its vip.
bool checkStructure(std::string_view text, Report& report, long& position);
// Strips outer white space and drops layout white space; a kept run becomes
// one space, or one newline when it held a newline.
std::string normalise(std::string_view text);

// Index of the partner of the bracket at `index`; `index` itself when the byte
// there is no bracket. Inside a literal only "[" and "]" count; in code "(" and
// "{" open alike and literals are jumped over whole.
long matchBracket(std::string_view text, long index);
// Every index outside all brackets whose byte is in `set`, in order. An
// opener in the set is recorded and its contents skipped.
std::vector<long> splitPoints(std::string_view text, std::string_view set);
// The first index at or after `start`, outside all brackets, whose byte is in
// `set`; -1 when there is none.
long findOutside(long start, std::string_view text, std::string_view set);

}  // namespace tarn

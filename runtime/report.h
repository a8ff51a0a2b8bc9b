// Reports: the record in which every stage tells what went wrong, its banner,
// and the text form in which a report travels inside a running program.
//
// Contract: a stage returns a `Report`; its `tag` reads "check" when all is
// well. Reports are plain values, moved between stages.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

struct Report {
  std::string say;            // the message for the reader
  std::string tag = "check";  // kind of report; "check" when all is well
  std::string vip;            // the main subject: position, name or expression
  std::string tip;            // the second subject, or empty
  std::string way;            // where it happened, or empty
  bool ok() const { return tag == "check"; }
};

// The whole text to print for a report: three banner lines, then way, vip,
// tip and say (in that order) where not empty.
std::string banner(const Report& r);
// Bytes rendered with colour sequences and visible glyphs. Byte 160 has no
// glyph: rendering it is the internal failure "charnopq".
std::string showBytes(std::string_view s);
// A name for a tip or vip field: exactly 5 bytes get " \"" appended; texts of
// 73 bytes or more are cut to 69 bytes and "...".
std::string shortName(std::string_view s);
// A balanced excerpt of at most 72 bytes; excerptPlain treats braces as
// plain bytes.
std::string excerpt(std::string_view s);
std::string excerptPlain(std::string_view s);
// Text form: "['" then ["field] for say, tag, vip, tip, way, then "]".
std::string reportText(const Report& r);
Report reportFromText(std::string_view text);

}  // namespace tarn

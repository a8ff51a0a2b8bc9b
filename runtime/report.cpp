// The banner, the coloured rendering of bytes, shortened names, balanced
// excerpts, and the text form of a report.
#include "runtime/report.h"

#include <array>
#include <vector>

#include "terms/failure.h"

namespace tarn {

// ---- Banner -------------------------------------------------------------------------

std::string banner(const Report& r) {
  std::string out;
  out += "                        /\\\n";
  out += "\\/\\oh [";
  out += r.tag;  // raw: the tag is one lower-case word
  out += "]     /\\   /  \\\n";
  out += "/\\uck_________/\\_/  \\_/    \\_\n";
  // The subjects come in the order way, vip, tip, say, unlike the record.
  const std::pair<const char*, const std::string*> lines[] = {
      {" <way> ", &r.way}, {" <vip> ", &r.vip}, {" <tip> ", &r.tip}, {" <say> ", &r.say}};
  for (const auto& [label, text] : lines) {
    if (text->empty()) continue;
    out += label;
    out += showBytes(*text);
    out += '\n';
  }
  return out;
}

// ---- showBytes ---------------------------------------------------------------------------

namespace {

enum class Colour : uint8_t { plain, green, red };

struct Shown {
  Colour colour;
  char glyph;  // 0 for byte 160, which has none
};

// Every byte's colour class and visible glyph. Controls, space, 127..159 and
// 255 are green; 160..254 red, shown as the byte minus 128; the rest plain.
constexpr std::array<Shown, 256> makeShownTable() {
  constexpr std::string_view high = "~!@#$%^&*<>-|+/=\\.`'\":;?0123456789";  // 127..160
  constexpr std::string_view low = "]JABCDEFGHI,KLMNOPQRSTUVWXYZ(){}[_";      // 255, 0..32
  std::array<Shown, 256> t{};
  for (int b = 0; b < 256; b++) {
    Shown s{};
    if (b < 33) s.colour = Colour::green;
    else if (b <= 126) s.colour = Colour::plain;
    else if (b <= 159 || b == 255) s.colour = Colour::green;
    else s.colour = Colour::red;

    if (b == ' ' || (b >= 33 && b <= 126)) s.glyph = char(b);
    else if (b >= 161 && b <= 254) s.glyph = char(b - 128);
    else if (b >= 127 && b <= 159) s.glyph = high[size_t(b - 127)];
    else if (b == 255 || b < 32) s.glyph = low[size_t((b + 1) & 255)];
    else s.glyph = 0;  // 160
    t[size_t(b)] = s;
  }
  return t;
}
constexpr auto kShown = makeShownTable();

constexpr std::string_view colourSequence(Colour c) {
  switch (c) {
    case Colour::red: return "\033[31m";
    case Colour::green: return "\033[32m";
    case Colour::plain: break;
  }
  return "\033[m";
}

}  // namespace

std::string showBytes(std::string_view s) {
  std::string out;
  out.reserve(s.size() + 16);
  Colour current = Colour::plain;
  for (char ch : s) {
    const Shown& shown = kShown[static_cast<unsigned char>(ch)];
    if (shown.glyph == 0) [[unlikely]] internalFailure("charnopq");
    if (shown.colour != current) {
      out += colourSequence(shown.colour);
      current = shown.colour;
    }
    out += shown.glyph;
  }
  if (current != Colour::plain) out += colourSequence(Colour::plain);
  return out;
}

// ---- Names and excerpts -------------------------------------------------------------

std::string shortName(std::string_view s) {
  // A five-byte text gets a space and a double quote, whatever it says.
  if (s.size() == 5) return std::string(s) + " \"";
  if (s.size() < 73) return std::string(s);
  return std::string(s.substr(0, 69)) + "...";
}

namespace {

constexpr size_t kExcerptLimit = 72;

// The copy keeps a stack of open brackets so that the closers can be added at
// the end; a byte is copied only while copy plus closers stays within the
// limit, and an opener needs room for itself and its closer.
std::string excerptWalk(std::string_view s, bool braces) {
  std::string out;
  std::vector<char> open;
  auto isOpener = [&](char c) { return c == '(' || c == '[' || (braces && c == '{'); };
  auto isCloser = [&](char c) { return c == ')' || (braces && c == '}'); };
  for (char c : s) {
    size_t n = out.size() + open.size();
    if (n == kExcerptLimit) break;
    if (!open.empty() && open.back() == '[') {
      // Inside a literal only brackets count.
      if (c == '[') {
        if (n == kExcerptLimit - 1) break;
        open.push_back(c);
      } else if (c == ']') {
        open.pop_back();
      }
    } else if (isOpener(c)) {
      if (n == kExcerptLimit - 1) break;
      open.push_back(c);
    } else if (isCloser(c) && !open.empty()) {
      // A closer with nothing open is copied as a plain byte.
      open.pop_back();
    }
    out += c;
  }
  while (!open.empty()) {
    char c = open.back();
    open.pop_back();
    out += c == '(' ? ')' : c == '{' ? '}' : ']';
  }
  return out;
}

}  // namespace

std::string excerpt(std::string_view s) { return excerptWalk(s, true); }
std::string excerptPlain(std::string_view s) { return excerptWalk(s, false); }

// ---- Text form -------------------------------------------------------------------------

std::string reportText(const Report& r) {
  std::string out = "['";
  for (const std::string* field : {&r.say, &r.tag, &r.vip, &r.tip, &r.way}) {
    out += "[\"";
    out += *field;
    out += ']';
  }
  out += ']';
  return out;
}

namespace {

// The index of the "]" that closes the group opening at `start`; the end of
// the text when the group never closes.
size_t groupEnd(std::string_view text, size_t start) {
  long depth = 0;
  for (size_t i = start; i < text.size(); i++) {
    if (text[i] == '[') depth++;
    else if (text[i] == ']' && --depth == 0) return i;
  }
  return text.size();
}

}  // namespace

// Each field is what lies between a group's second byte and its closer. The
// text normally comes from reportText over balanced fields; a text that is
// not of that form gives empty or cut fields, never a fault.
Report reportFromText(std::string_view text) {
  Report r;
  size_t i = 2;
  for (std::string* field : {&r.say, &r.tag, &r.vip, &r.tip, &r.way}) {
    if (i >= text.size() || text[i] != '[') {
      field->clear();
      i++;
      continue;
    }
    size_t end = groupEnd(text, i);
    *field = i + 2 < end ? std::string(text.substr(i + 2, end - i - 2)) : std::string();
    i = end + 1;
  }
  return r;
}

}  // namespace tarn

// Message localisation: texts with numbered placeholders "{0}", "{1}", ... filled in from a list
// of argument strings. No message catalogue exists in this release: init always fails, and the
// texts given are only filled in.
#ifndef ORVAN_LOCALIZATION_H
#define ORVAN_LOCALIZATION_H

#include <initializer_list>
#include <string>

namespace Orvan {
namespace loc {

// Always throws the C string "fail impl here"; callers catch a const char*.
void init(const char* catalogue, int option);

// The text with each "{i}" replaced by the i-th argument, or by emptyValue where that argument
// is empty. Placeholders without an argument stay as they are. A null text or argument throws
// std::logic_error.
std::string al(const char* text, std::initializer_list<const char*> args, const char* emptyValue);
std::string al(const char* text, std::initializer_list<const char*> args);
std::string al(const char* text);

void close();

// Fills in the placeholders without consulting a catalogue. Every occurrence is replaced,
// searching again from the start after each replacement, so an argument must not contain its
// own placeholder.
std::string interpolate(const char* text, std::initializer_list<const char*> args,
                        const char* emptyValue);

} // namespace loc
} // namespace Orvan

#endif

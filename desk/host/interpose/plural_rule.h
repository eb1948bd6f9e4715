#ifndef DESK_INTERPOSE_PLURAL_RULE_H
#define DESK_INTERPOSE_PLURAL_RULE_H

#include <optional>
#include <string_view>

namespace desk
{

/// The index of a text's form for `n`. `rule` is a C expression of n from a catalogue's header: "n != 1". nullopt if
/// it is invalid.
std::optional<unsigned long> pluralForm(std::string_view rule, unsigned long n);

} // namespace desk

#endif

#ifndef DESK_INTERPOSE_PLURAL_RULE_H
#define DESK_INTERPOSE_PLURAL_RULE_H

#include <optional>
#include <string_view>

namespace desk
{

/// Which of a text's forms is for `n` things, from 0. `rule` is a C expression of n, as a catalogue's header
/// gives it: "n != 1". Nothing where it is none.
std::optional<unsigned long> pluralForm(std::string_view rule, unsigned long n);

} // namespace desk

#endif

#ifndef DESK_HOST_LANGUAGE_H
#define DESK_HOST_LANGUAGE_H

#include <string>

namespace desk
{

/// Shows the plugin's texts, and the host's own words, in `lang`. `catalogue` is DOMAIN[:FOLDER], the folder being by
/// default the one that comes with this program. Throws an Error when there is none, or none that can be used.
void setLanguage(const std::string &lang, const std::string &catalogue);

} // namespace desk

#endif

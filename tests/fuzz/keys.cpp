// Key scripts: a script of known keys gives its keys, any other one clear line.

#include "desk_error.h"
#include "key.h"
#include "target.h"

#include <algorithm>
#include <optional>
#include <set>
#include <sstream>

namespace
{

const std::set<std::string> known = {"up", "down", "left", "right", "pageup", "pagedown", "home", "end",
                                     "ok", "exit", "red",  "green", "yellow", "blue",     "0",    "1",
                                     "2",  "3",    "4",    "5",     "6",      "7",        "8",    "9"};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string script = fuzz::text(data, size);
	std::string error;
	std::optional<std::vector<desk::Key>> keys;
	try {
		keys = desk::parseKeyScript(script);
	} catch (const desk::Error &wrong) {
		error = wrong.line;
	}

	std::istringstream words(script);
	std::vector<std::string> names;
	bool good = true;
	for (std::string word; words >> word; names.push_back(word))
		good = good && known.count(word);

	fuzz::require(keys.has_value() == good, "a script is taken that is wrong, or refused that is right");
	if (!keys) {
		fuzz::require(!error.empty() && error.size() < 400, "the error is no short line");
		fuzz::require(std::all_of(error.begin(), error.end(), [](char c) { return c >= ' ' && c <= '~'; }),
		              "the error quotes what a terminal may obey");
		return 0;
	}
	fuzz::require(keys->size() == names.size(), "the number of keys differs");
	for (std::size_t i = 0; i < names.size(); ++i)
		fuzz::require(names[i] == desk::keyName((*keys)[i]), "a key differs from its name");
	return 0;
}

// Skin files: any bytes give a usable skin or one clear line.

#include "skin.h"
#include "desk_error.h"
#include "target.h"

#include <algorithm>
#include <optional>

namespace
{

bool isOneCleanLine(const std::string &text)
{
	return std::none_of(text.begin(), text.end(), [](char c) {
		const unsigned char byte = static_cast<unsigned char>(c);
		return byte < ' ' || byte == 0x7f;
	});
}

void requireUsable(const desk::Decoration &decoration)
{
	fuzz::require(decoration.padding >= 0 && decoration.padding <= 200, "a padding is out of bounds");
	for (const auto &fill : {decoration.background, decoration.focused})
		fuzz::require(!fill || (fill->radius >= 0 && fill->radius <= 100), "a radius is out of bounds");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	std::optional<desk::Skin> skin;
	try {
		skin = desk::Skin::parse(fuzz::text(data, size), "fuzzed\n.toml");
	} catch (const desk::Error &error) {
		fuzz::require(!error.line.empty() && isOneCleanLine(error.line), "the error is no clean line");
		fuzz::require(error.line.find("fuzzed") != std::string::npos, "the error does not name the file");
		return 0;
	}
	if (const auto fontSize = skin->value("fontsize"))
		fuzz::require(*fontSize >= 1 && *fontSize <= 200, "the font size is out of bounds");
	const int radius = skin->window.radius;
	fuzz::require(radius >= 0 && radius <= 100, "the window's radius is out of bounds");
	for (const char *name : {"eLabel", "eButton", "eListBox", "no such"})
		requireUsable(skin->decoration(name));
	return 0;
}

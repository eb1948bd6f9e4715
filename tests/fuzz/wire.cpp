// Messages of the plugin's half: any bytes decode to a valid message or to none.

#include "message.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	std::optional<desk::ToViewer> message = desk::decodeToViewer(bytes);
	if (message) {
		const std::string again = desk::encode(*message);
		fuzz::require(desk::decodeToViewer(again).has_value(), "a message that was taken cannot be sent");
		if (desk::Frame *frame = std::get_if<desk::Frame>(&*message)) {
			desk::DisplayList list, drawn;
			const auto changes = list.apply(std::move(frame->edit));
			if (changes)
				list.drawChanges(drawn);
			fuzz::require(!changes || *changes == changes->intersected(desk::wholeScreen),
			              "a frame reaches out of the screen");
		}
	}
	desk::decodeToHost(bytes);
	return 0;
}

#include "receiver_folder.h"

namespace support
{

void ReceiverFolder::command(const std::string &name, const std::string &output) const
{
	write("output/" + name, output);
	write("bin/" + name, "#!/bin/sh\nexec cat \"$(dirname \"$0\")/../output/" + name + "\"\n", true);
}

} // namespace support

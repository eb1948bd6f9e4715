#ifndef VEXLO_TESTS_RECEIVER_FOLDER_H
#define VEXLO_TESTS_RECEIVER_FOLDER_H

#include "temp_folder.h"

namespace support
{

/// A receiver's files and commands. Those not set are missing.
class ReceiverFolder : public TempFolder
{
public:
	ReceiverFolder() { write("bin/.keep", ""); }

	void meminfo(const std::string &content) const { write("proc/meminfo", content); }
	void mtd(const std::string &content) const { write("proc/mtd", content); }
	void scanLog(const std::string &content) const { write("var/scaning.log", content); }
	/// Sets a command's output.
	void ps(const std::string &output) const { command("ps", output); }
	void df(const std::string &output) const { command("df", output); }

private:
	void command(const std::string &name, const std::string &output) const;
};

} // namespace support

#endif

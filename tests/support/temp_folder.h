#ifndef VEXLO_TESTS_TEMP_FOLDER_H
#define VEXLO_TESTS_TEMP_FOLDER_H

#include <string>
#include <vector>

namespace support
{

using Lines = std::vector<std::string>;

/// A folder that goes with everything in it.
class TempFolder
{
public:
	TempFolder();
	~TempFolder();
	TempFolder(const TempFolder &) = delete;
	TempFolder &operator=(const TempFolder &) = delete;

	const std::string &path() const { return folder; }
	std::string operator/(const std::string &name) const { return folder + '/' + name; }

	/// Writes a file below the folder, making its folders; returns its path.
	std::string write(const std::string &name, const std::string &content, bool executable = false) const;

private:
	std::string folder;
};

/// The whole file; "" when there is none.
std::string readFile(const std::string &path);

/// Fails the test when not all of it could be written.
void writeFile(const std::string &path, const std::string &content);

/// Whether there is anything at `path`, be it a link that leads nowhere.
bool exists(const std::string &path);

Lines lines(const std::string &text);
std::string repeat(const std::string &text, int times);

} // namespace support

#endif

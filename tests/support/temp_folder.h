#ifndef VEXLO_TESTS_TEMP_FOLDER_H
#define VEXLO_TESTS_TEMP_FOLDER_H

#include <string>
#include <vector>

namespace support
{

using Lines = std::vector<std::string>;

/// A folder, deleted with its contents by the destructor.
class TempFolder
{
public:
	TempFolder();
	~TempFolder();
	TempFolder(const TempFolder &) = delete;
	TempFolder &operator=(const TempFolder &) = delete;

	const std::string &path() const { return folder; }
	std::string operator/(const std::string &name) const { return folder + '/' + name; }

	/// Writes a file below the folder, and creates its folders; returns its path.
	std::string write(const std::string &name, const std::string &content, bool executable = false) const;

private:
	std::string folder;
};

/// The whole file; "" if it is missing.
std::string readFile(const std::string &path);

/// Fails the test when writing fails.
void writeFile(const std::string &path, const std::string &content);

/// Whether `path` exists, also as a dangling link.
bool exists(const std::string &path);

Lines lines(const std::string &text);
std::string repeat(const std::string &text, int times);

} // namespace support

#endif

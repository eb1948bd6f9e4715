#include "temp_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace support
{

namespace fs = std::filesystem;

TempFolder::TempFolder()
{
	std::string form = fs::temp_directory_path() / "vexlo-test-XXXXXX";
	if (!mkdtemp(form.data())) {
		ADD_FAILURE() << "cannot make a temporary folder";
		std::abort();
	}
	folder = form;
}

TempFolder::~TempFolder()
{
	std::error_code ignored;
	fs::remove_all(folder, ignored);
}

std::string TempFolder::write(const std::string &name, const std::string &content, bool executable) const
{
	const std::string path = folder + '/' + name;
	fs::create_directories(fs::path(path).parent_path());
	writeFile(path, content);
	if (executable)
		chmod(path.c_str(), 0755);
	return path;
}

std::string readFile(const std::string &path)
{
	std::ostringstream content;
	content << std::ifstream(path, std::ios::binary).rdbuf();
	return content.str();
}

void writeFile(const std::string &path, const std::string &content)
{
	std::ofstream file(path, std::ios::binary);
	file << content;
	EXPECT_TRUE(file.flush().good()) << path;
}

bool exists(const std::string &path)
{
	std::error_code failed;
	return fs::exists(fs::symlink_status(path, failed));
}

Lines lines(const std::string &text)
{
	Lines result;
	std::istringstream stream(text);
	for (std::string line; std::getline(stream, line);)
		result.push_back(line);
	return result;
}

std::string repeat(const std::string &text, int times)
{
	std::string result;
	for (int i = 0; i < times; ++i)
		result += text;
	return result;
}

} // namespace support

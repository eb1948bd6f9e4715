#include "device_folder.h"

#include <algorithm>
#include <filesystem>

namespace desk
{

std::vector<std::string> numberedDevices(const std::string &folder, const std::string &name)
{
	std::vector<std::string> paths;
	std::error_code failed;
	std::filesystem::directory_iterator entry(folder, failed);
	for (; !failed && entry != end(entry); entry.increment(failed)) {
		const std::string file = entry->path().filename();
		if (file.compare(0, name.size(), name) == 0 && file.size() > name.size() &&
		    file.find_first_not_of("0123456789", name.size()) == file.npos)
			paths.push_back(entry->path());
	}
	std::sort(paths.begin(), paths.end(), [](const std::string &a, const std::string &b) {
		return a.size() != b.size() ? a.size() < b.size() : a < b; // event10 after event9
	});
	return paths;
}

} // namespace desk

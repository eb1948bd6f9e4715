#ifndef VEXLO_TESTS_SUPPORT_H
#define VEXLO_TESTS_SUPPORT_H

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

namespace support
{

using Json = nlohmann::ordered_json;

std::string deskhostPath();
std::string pluginPath();
std::string sourcePath(const std::string &inTree); ///< a file of the source tree
std::string buildPath(const std::string &inTree);  ///< a file of the build tree

/// What a program did. `status` is its exit status, or 128 plus the signal that ended it.
struct Outcome
{
	int status = -1;
	std::string out, err;
};

/// Runs a program to its end; `environment` is added to this process's, an empty value removes.
Outcome run(const std::vector<std::string> &command,
            const std::map<std::string, std::string> &environment = {});

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

std::string readFile(const std::string &path);
bool exists(const std::string &path);
std::vector<std::string> lines(const std::string &text);
std::string repeat(const std::string &text, int times);

/// A receiver's files. What is not set is missing there.
class Receiver : public TempFolder
{
public:
	Receiver() { write("bin/.keep", ""); }

	void meminfo(const std::string &content) const { write("proc/meminfo", content); }
	void mtd(const std::string &content) const { write("proc/mtd", content); }
	void scanLog(const std::string &content) const { write("var/scaning.log", content); }
	/// What the commands print.
	void ps(const std::string &output) const { command("ps", output); }
	void df(const std::string &output) const { command("df", output); }

private:
	void command(const std::string &name, const std::string &output) const;
};

/// The default skin with another "fontsize", written into `folder`; 0: without one. Returns its path.
std::string skinWithFontSize(const TempFolder &folder, int fontSize);

/// One play of the plugin in the desk host, with no screen but everything recorded.
struct Play
{
	Outcome outcome;
	std::vector<std::string> trace; ///< its lines
	std::vector<Json> moments;      ///< the dump's lines

	/// The topmost window after the key number `index` (0: the start).
	const Json &window(size_t index) const { return moments.at(index).at("windows").back(); }
	/// The first widget of that class in that window.
	const Json &widget(size_t index, const std::string &type, size_t nth = 0) const;
	/// The trace's lines from the first one that is `from` up to the first one after it that is `to`.
	std::vector<std::string> traceBetween(const std::string &from, const std::string &to) const;
};

/// `root` empty: this computer. Further options as on the command line.
Play play(const std::string &root, const std::string &keys, const std::vector<std::string> &options = {},
          const std::map<std::string, std::string> &environment = {});

} // namespace support

#endif

#include "support.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace support
{

namespace fs = std::filesystem;

std::string deskhostPath()
{
	return TEST_DESKHOST;
}

std::string pluginPath()
{
	return TEST_PLUGIN;
}

std::string sourcePath(const std::string &inTree)
{
	return TEST_SOURCE_DIR "/" + inTree;
}

std::string buildPath(const std::string &inTree)
{
	return TEST_BINARY_DIR "/" + inTree;
}

Outcome run(const std::vector<std::string> &command, const std::map<std::string, std::string> &environment)
{
	TempFolder folder;
	const std::string out = folder / "out", err = folder / "err";
	const pid_t child = fork();
	if (child == 0) {
		for (const auto &[name, value] : environment) {
			if (value.empty())
				unsetenv(name.c_str());
			else
				setenv(name.c_str(), value.c_str(), 1);
		}
		const auto redirect = [](const std::string &path, int flags, int to) {
			const int file = ::open(path.c_str(), flags, 0644);
			if (file < 0 || dup2(file, to) < 0)
				_exit(126);
		};
		redirect("/dev/null", O_RDONLY, STDIN_FILENO);
		redirect(out, O_WRONLY | O_CREAT, STDOUT_FILENO);
		redirect(err, O_WRONLY | O_CREAT, STDERR_FILENO);
		std::vector<char *> arguments;
		for (const std::string &word : command)
			arguments.push_back(const_cast<char *>(word.c_str()));
		arguments.push_back(nullptr);
		execvp(arguments[0], arguments.data());
		_exit(127);
	}
	int status = 0;
	EXPECT_EQ(waitpid(child, &status, 0), child);
	Outcome outcome;
	outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
	outcome.out = readFile(out);
	outcome.err = readFile(err);
	return outcome;
}

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
	std::ofstream(path, std::ios::binary) << content;
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

bool exists(const std::string &path)
{
	std::error_code failed;
	return fs::exists(path, failed);
}

std::vector<std::string> lines(const std::string &text)
{
	std::vector<std::string> result;
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

void Receiver::command(const std::string &name, const std::string &output) const
{
	write("output/" + name, output);
	write("bin/" + name, "#!/bin/sh\nexec cat \"$(dirname \"$0\")/../output/" + name + "\"\n", true);
}

std::string skinWithFontSize(const TempFolder &folder, int fontSize)
{
	std::string skin;
	bool found = false;
	for (const std::string &line : lines(readFile(sourcePath("desk/skins/default.toml")))) {
		if (line.rfind("fontsize", 0) != 0) {
			skin += line + '\n';
			continue;
		}
		found = true;
		if (fontSize)
			skin += "fontsize = " + std::to_string(fontSize) + '\n';
	}
	EXPECT_TRUE(found) << "the default skin has no fontsize to change";
	return folder.write("skin.toml", skin);
}

const Json &Play::widget(size_t index, const std::string &type, size_t nth) const
{
	for (const Json &widget : window(index).at("widgets"))
		if (widget.at("class") == type && nth-- == 0)
			return widget;
	ADD_FAILURE() << "no " << type << " in " << window(index).dump();
	static const Json none = Json::object();
	return none;
}

std::vector<std::string> Play::traceBetween(const std::string &from, const std::string &to) const
{
	const auto first = std::find(trace.begin(), trace.end(), from);
	if (first == trace.end()) {
		ADD_FAILURE() << "the trace has no line " << from << "\n" << ::testing::PrintToString(trace);
		return {};
	}
	const auto last = std::find(first + 1, trace.end(), to);
	if (last == trace.end()) {
		ADD_FAILURE() << "the trace has no line " << to << "\n" << ::testing::PrintToString(trace);
		return {};
	}
	return std::vector<std::string>(first, last + 1);
}

Play play(const std::string &root, const std::string &keys, const std::vector<std::string> &options,
          const std::map<std::string, std::string> &environment)
{
	TempFolder folder;
	std::vector<std::string> command = {deskhostPath(), "--screen",      "none",    "--keys",        keys,
	                                    "--dump",       folder / "dump", "--trace", folder / "trace"};
	if (!root.empty())
		command.insert(command.end(), {"--root", root});
	command.insert(command.end(), options.begin(), options.end());

	Play result;
	result.outcome = run(command, environment);
	result.trace = lines(readFile(folder / "trace"));
	for (const std::string &line : lines(readFile(folder / "dump")))
		result.moments.push_back(Json::parse(line));
	return result;
}

} // namespace support

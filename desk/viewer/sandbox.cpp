#include "sandbox.h"

#include "open_in_root.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <set>

namespace desk
{

namespace
{

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

/// Holds this computer's entries of folders that the sandbox makes anew.
const fs::path computer = "/run/computer";
/// Folders that the sandbox replaces completely.
const std::set<fs::path> own = {"/dev", "/proc", "/run", "/tmp", "/var"};

fs::path topOf(const fs::path &path)
{
	return path.root_path() / *std::next(path.begin());
}

std::vector<fs::path> namesIn(const fs::path &folder)
{
	std::error_code failed;
	std::vector<fs::path> names;
	for (fs::directory_iterator entry(folder, failed); !failed && entry != fs::end(entry);
	     entry.increment(failed))
		names.push_back(entry->path().filename());
	return names;
}

/// An open folder that serves as /.
class Root
{
public:
	explicit Root(const std::string &folder)
		: descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), path(pathOf(descriptor))
	{}
	~Root() { close(descriptor); }
	Root(const Root &) = delete;
	Root &operator=(const Root &) = delete;

	/// Its path without links.
	const fs::path &here() const { return path; }

	/// The real path of the receiver's `what`; empty with errno set if it is missing.
	fs::path find(const fs::path &what, int flags = 0) const
	{
		const int found = openInRoot(descriptor, what.c_str(), O_PATH | flags);
		if (found < 0)
			return {};
		fs::path place = pathOf(found);
		close(found);
		return place;
	}

	/// The path of one of its files inside the sandbox.
	fs::path within(const fs::path &place) const
	{
		return Sandbox::receiver / place.lexically_relative(path);
	}

	/// Creates /var/tmp if missing; false with errno set if it is not writable.
	bool hasVarTmp() const
	{
		const auto isMissing = [this](const char *what) { return find(what).empty() && errno == ENOENT; };
		if (isMissing("/var/tmp")) {
			if (mkdirat(descriptor, "var", 0777) != 0 && errno != EEXIST)
				return false;
			const fs::path var = find("/var", O_DIRECTORY);
			if (var.empty() || mkdir((var / "tmp").c_str(), 0777) != 0)
				return false;
		}
		const fs::path folder = find("/var/tmp", O_DIRECTORY);
		return !folder.empty() && access(folder.c_str(), W_OK | X_OK) == 0;
	}

private:
	static fs::path pathOf(int file)
	{
		std::error_code failed;
		return fs::read_symlink("/proc/self/fd/" + std::to_string(file), failed);
	}

	const int descriptor;
	const fs::path path;
};

/// Builds the command line of bubblewrap.
class Layout
{
public:
	explicit Layout(const Sandbox &what) : sandbox(what), root(what.root) {}

	Words words(std::string &note)
	{
		add({"bwrap", "--die-with-parent", "--new-session", "--unshare-pid", "--unshare-ipc", "--unsetenv",
		     "TMPDIR"});
		if (geteuid() == 0) // the superuser keeps the right to access others' files
			add({"--cap-add", "CAP_DAC_OVERRIDE"});
		add({"--dev", "/dev", "--tmpfs", "/run", "--perms", "1777", "--tmpfs", "/tmp"});
		add({"--bind", root.here(), Sandbox::receiver});
		findFoldersToMake();
		addTops();
		if (topOf(root.here()) != "/var") // the receiver's scripts may contain this path
			add({"--bind", root.here(), root.here()});
		addVar(note);
		for (const fs::path &folder : made)
			make(folder);
		addServed();
		addShell();
		addNeeded();
		return std::move(all);
	}

private:
	void add(std::initializer_list<std::string> words) { all.insert(all.end(), words); }

	/// The parent folders of served files: made anew, because nothing can be added to this computer's.
	void findFoldersToMake()
	{
		made.insert("/proc");
		for (const fs::path path : sandbox.served)
			if (topOf(path) != "/var")
				for (fs::path folder = path.parent_path(); folder.has_filename();
				     folder = folder.parent_path())
					made.insert(folder);
	}

	/// Top-level names: this computer's, and those that only the receiver has.
	void addTops()
	{
		for (const fs::path &name : namesIn("/")) {
			const fs::path top = "/" / name;
			std::error_code failed;
			if (own.count(top))
				continue;
			if (made.count(top))
				add({"--ro-bind", top, computer / name});
			else if (fs::is_symlink(top, failed))
				add({"--symlink", fs::read_symlink(top, failed), top});
			else if (fs::is_directory(top, failed))
				add({"--ro-bind", top, top});
		}
		for (const fs::path &name : namesIn(root.here())) {
			const fs::path top = "/" / name, theirs = root.here() / name;
			std::error_code failed;
			if (fs::exists(fs::symlink_status(top, failed)) || made.count(top))
				continue;
			if (fs::is_symlink(theirs, failed))
				add({"--symlink", fs::read_symlink(theirs, failed), top});
			else if (fs::is_directory(theirs, failed))
				add({"--bind", theirs, top});
		}
	}

	void addVar(std::string &note)
	{
		if (root.hasVarTmp())
			return add({"--bind", root.find("/var", O_DIRECTORY), "/var"});
		note = "deskhost: with --root, /var/tmp is the one in that folder, which is no folder to write to (" +
		       std::string(std::strerror(errno)) + "); a temporary one takes its place";
		add({"--tmpfs", "/var", "--dir", "/var/tmp"});
		const fs::path var = root.find("/var", O_DIRECTORY);
		if (!var.empty())
			for (const fs::path &name : namesIn(var))
				if (name != "tmp")
					add({"--symlink", root.within(var / name), "/var" / name});
	}

	/// Makes a folder with links to this computer's entries, except served files.
	void make(const fs::path &folder)
	{
		if (folder == "/proc")
			makeProc();
		else
			add({folder == topOf(folder) && !own.count(folder) ? "--tmpfs" : "--dir", folder});
		if (own.count(topOf(folder)) && topOf(folder) != "/proc")
			return;
		for (const fs::path &name : namesIn(folder)) {
			const fs::path path = folder / name;
			const bool isProcess =
				folder == "/proc" && name.string().find_first_not_of("0123456789") == std::string::npos;
			const bool isServed =
				std::find(sandbox.served.begin(), sandbox.served.end(), path) != sandbox.served.end();
			if (!isProcess && !isServed && !made.count(path))
				add({"--symlink", computer / path.relative_path(), path});
		}
	}

	/// Processes start later, so links for all expected numbers exist from the beginning.
	void makeProc()
	{
		constexpr int mostProcesses = 500;
		add({"--tmpfs", "/proc", "--proc", computer / "proc"});
		for (int number = 1; number <= mostProcesses; ++number) {
			const std::string name = std::to_string(number);
			add({"--symlink", computer / "proc" / name, "/proc/" + name});
		}
	}

	void addServed()
	{
		for (const fs::path path : sandbox.served) {
			if (topOf(path) == "/var")
				continue;
			fs::path there = root.find(path);
			const fs::path folder = root.find(path.parent_path(), O_DIRECTORY);
			std::error_code failed;
			if (there.empty() && !fs::is_symlink(folder / path.filename(), failed))
				there = folder.empty() ? root.here() / path.relative_path() : folder / path.filename();
			if (!there.empty())
				add({"--symlink", root.within(there), path});
		}
	}

	/// Replaces the shell and BusyBox by the receiver's, if it has them.
	void addShell()
	{
		for (const char *path : {"/bin/sh", "/bin/busybox"}) {
			std::error_code failed;
			const fs::path theirs = root.find(path), ours = fs::canonical(path, failed);
			if (!theirs.empty() && fs::is_regular_file(theirs, failed) && !ours.empty())
				add({"--ro-bind", theirs, ours});
		}
	}

	void addNeeded()
	{
		for (const std::string &name : sandbox.needed) {
			std::error_code failed;
			const fs::path path = fs::absolute(name, failed).lexically_normal();
			if (path.has_relative_path() && own.count(topOf(path)))
				add({"--ro-bind-try", path, path});
		}
		std::error_code failed;
		const fs::path here = fs::current_path(failed);
		if (here.has_relative_path() && own.count(topOf(here)) && topOf(here) != "/var")
			add({"--dir", here});
	}

	const Sandbox &sandbox;
	const Root root;
	std::set<fs::path> made; ///< parents first
	Words all;
};

} // namespace

std::vector<std::string> Sandbox::command(std::string &note) const
{
	return Layout(*this).words(note);
}

bool works(std::vector<std::string> sandbox, std::string &why)
{
	sandbox.insert(sandbox.end(), {"/bin/sh", "-c", ":"});
	std::vector<char *> words;
	for (std::string &word : sandbox)
		words.push_back(word.data());
	words.push_back(nullptr);
	int output[2];
	if (pipe2(output, O_CLOEXEC) != 0) {
		why = std::strerror(errno);
		return false;
	}
	prctl(PR_SET_CHILD_SUBREAPER, 1); // the sandbox's first process outlives bubblewrap briefly
	const pid_t child = fork();
	if (child == 0) {
		dup2(output[1], STDERR_FILENO);
		execvp(words[0], words.data());
		const char missing[] = "bubblewrap is not installed";
		[[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, missing, sizeof missing - 1);
		_exit(1);
	}
	close(output[1]);
	why.clear();
	char piece[1000];
	constexpr int patience = 5000; // milliseconds
	pollfd answer = {output[0], POLLIN, 0};
	ssize_t length = 1;
	for (int ready = 1; length > 0 && ready != 0;) {
		ready = poll(&answer, 1, patience); // repeated after a signal
		if (ready > 0 && (length = read(output[0], piece, sizeof piece)) > 0)
			why.append(piece, static_cast<size_t>(length));
	}
	if (length > 0) { // not at its end: a process hangs
		why = "bubblewrap does not answer";
		if (child > 0)
			kill(child, SIGKILL);
	}
	close(output[0]);
	int status = -1;
	while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
	}
	why.resize(std::min(why.find('\n'), why.size()));
	return status == 0;
}

} // namespace desk

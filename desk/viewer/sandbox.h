#ifndef DESK_VIEWER_SANDBOX_H
#define DESK_VIEWER_SANDBOX_H

#include <string>
#include <vector>

namespace desk
{

/// Restricts a program with bubblewrap so that it can change only the receiver's folder: namespaces for processes,
/// mounts and System V IPC, and a session. The folder's files appear at a receiver's paths. The rest of this computer
/// is read-only; /dev, /run and /tmp are new.
struct Sandbox
{
	std::string root;                ///< the folder
	std::vector<std::string> served; ///< files of the folder to show at their own paths
	std::vector<std::string> needed; ///< files and folders that the program reads, at any place

	/// The folder inside the sandbox.
	static constexpr char receiver[] = "/run/receiver";

	/// The prefix of a command to run inside. `note`: the difference from a receiver, if any.
	std::vector<std::string> command(std::string &note) const;
};

/// Whether a program runs inside; otherwise `why` has the reason in a few words.
bool works(std::vector<std::string> sandbox, std::string &why);

} // namespace desk

#endif

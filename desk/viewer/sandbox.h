#ifndef DESK_VIEWER_SANDBOX_H
#define DESK_VIEWER_SANDBOX_H

#include <string>
#include <vector>

namespace desk
{

/// The receiver in a folder, as the only place that a program can change: by bubblewrap, in namespaces of processes,
/// mounts and System V's queues, and in a session of its own. The folder's files stand where a receiver has them, the
/// rest of this computer can only be read, and /dev, /run and /tmp are the program's own.
struct Sandbox
{
	std::string root; ///< the folder
	std::vector<std::string>
		served; ///< its files that stand in folders of this computer's, by their whole paths
	std::vector<std::string> needed; ///< files and folders that the program reads, wherever they are

	/// Where the folder is, within.
	static constexpr char receiver[] = "/run/receiver";

	/// What is to be put before a command so that it runs within. `note`: what is not as it is on the receiver; empty: all is.
	std::vector<std::string> command(std::string &note) const;
};

/// Whether a program runs within; otherwise `why` says in a few words why not.
bool works(std::vector<std::string> sandbox, std::string &why);

} // namespace desk

#endif

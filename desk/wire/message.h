#ifndef DESK_WIRE_MESSAGE_H
#define DESK_WIRE_MESSAGE_H

#include "display_list.h"
#include "key.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace desk
{

// From the viewer's half.

/// The first message: what to run and what to report.
struct Start
{
	std::string plugin;
	std::string root; ///< empty: this computer is the receiver
	/// Files that are read from the root.
	std::vector<std::string> served = {"/proc/meminfo", "/proc/mtd", "/var/scaning.log"};
	bool contained = false;      ///< a sandbox shows them at their own paths, and restricts changes
	bool asIs = false;           ///< this computer's own commands and memory summary
	std::string lang, catalogue; ///< as on the command line
	std::string skin;            ///< content of a skin file
	int rowHeight = 0;           ///< of text, in pixels; 0: the skin's
	bool draws = false;          ///< send frames
	bool describes = false;      ///< ... with descriptions
	bool traces = false;
};

/// Loads the plugin. Each run ends with unloading it.
struct Load
{
};

/// The console taken by the viewer's half, and its former modes.
struct ConsoleModes
{
	std::string name; ///< empty: none
	int display = 0, keyboard = 0;
};

/// Runs the plugin.
struct Run
{
	bool again = false;   ///< keys are replayed without a person, until the first Press without `again`
	ConsoleModes console; ///< to be restored if the viewer's half is killed
};

struct Press
{
	Key key = Key::exit;
	bool again = false; ///< replayed after a change of the plugin, without a person
};

/// A click on the picture, in its pixels: position of press and release.
struct Click
{
	int x = 0, y = 0;
	int upX = 0, upY = 0;
};

using ToHost = std::variant<Start, Load, Run, Press, Click>;

// From the plugin's half.

struct Loaded
{
};

/// Start or Load failed.
struct Failed
{
	int status = 1; ///< the exit status to use
	std::string why;
};

/// The screen after each key and at the end of a run.
struct Frame
{
	DisplayList::Edit edit; ///< from the last frame
	std::string windows;    ///< the description, a JSON text; empty: not requested
	bool waits = false;     ///< for a key
	unsigned question = 0;  ///< number of the open message box, new for each; 0: none
};

/// The keys that act like the click; the half still waits for a key.
struct Meaning
{
	std::vector<Key> keys;
};

/// A line for the person at the desk.
struct Note
{
	std::string line;
	bool urgent = false;  ///< must not be missed
	bool mistake = false; ///< a mistake in the plugin; the line lacks the plugin's name
};

/// A command of the plugin ended: its output precedes later messages.
struct CommandEnded
{
};

/// A line of the trace, or with `aside` a debug line between calls.
struct Call
{
	std::string line;
	bool aside = false;
};

/// The last key killed or deleted something, or did not because it was replayed.
struct Harm
{
	bool done = false;
};

struct Returned
{
	int result = 0;
};

/// Why the half ends during a run.
struct Crash
{
	/// A code address: a file and the offset in its memory image.
	struct Place
	{
		std::string file;
		uint64_t offset = 0;
	};

	int signal = 0;           ///< 0: it called exit()
	int status = 0;           ///< of exit()
	std::string what;         ///< the uncaught exception
	std::string event;        ///< the last key, and the last signal after it
	std::string call;         ///< the plugin's last call, as in a trace
	std::string gone;         ///< a destroyed object that it probably used
	std::vector<Place> stack; ///< innermost first
};

using ToViewer =
	std::variant<Loaded, Failed, Frame, Meaning, Note, Call, Harm, Returned, Crash, CommandEnded>;

/// The limit of a message's size.
constexpr size_t mostMessageBytes = 64 << 20;

/// Encodes and decodes messages. nullopt: the bytes are not exactly one valid message.
std::string encode(const ToHost &message);
std::string encode(const ToViewer &message);
std::optional<ToHost> decodeToHost(std::string_view bytes);
std::optional<ToViewer> decodeToViewer(std::string_view bytes);

} // namespace desk

#endif

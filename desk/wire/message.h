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

// What the viewer's half says.

/// The first message: what is to be run, and what of it is wanted.
struct Start
{
	std::string plugin;
	std::string root; ///< empty: this computer is the receiver
	/// The files that are in the root.
	std::vector<std::string> served = {"/proc/meminfo", "/proc/mtd", "/var/scaning.log"};
	bool contained = false;      ///< they stand where they are expected, and nothing else can be changed
	bool asIs = false;           ///< without a root: this computer's own commands and memory summary
	std::string lang, catalogue; ///< as on the command line
	std::string skin;            ///< a skin file's bytes
	int rowHeight = 0;           ///< of text, in pixels; 0: the skin's
	bool draws = false;          ///< frames are looked at
	bool describes = false;      ///< ... and described
	bool traces = false;
};

/// Loads the plugin. After each run it is unloaded.
struct Load
{
};

/// The Linux console that the viewer's half has taken, and its modes before that.
struct ConsoleModes
{
	std::string name; ///< empty: none
	int display = 0, keyboard = 0;
};

/// Runs it.
struct Run
{
	bool again = false;   ///< nobody answers for what it does until the first key that somebody has pressed
	ConsoleModes console; ///< to give back should the viewer's half be killed
};

struct Press
{
	Key key = Key::exit;
	bool again = false; ///< nobody has pressed it: it is pressed once more, after a change of the plugin
};

/// A click into the picture, in its pixels: where the button was pressed, and where it was let go.
struct Click
{
	int x = 0, y = 0;
	int upX = 0, upY = 0;
};

using ToHost = std::variant<Start, Load, Run, Press, Click>;

// What the plugin's half says.

/// The plugin is loaded and waits for Run.
struct Loaded
{
};

/// It cannot be, or nothing of what Start wants can.
struct Failed
{
	int status = 1; ///< the exit status that this is worth
	std::string why;
};

/// What is on the screen now, after each key and at the end of a run.
struct Frame
{
	DisplayList::Edit edit; ///< of the frame before
	std::string windows;    ///< the description, a JSON text; empty: not wanted
	bool waits = false;     ///< for a key
	unsigned question = 0;  ///< the message box that asks has another number each time; 0: none
};

/// The keys that do what the click means; it still waits for one.
struct Meaning
{
	std::vector<Key> keys;
};

/// A line for the person at the desk.
struct Note
{
	std::string line;
	bool urgent = false; ///< not to be missed
	bool notice = false; ///< about a mistake in the plugin, which the line does not name
};

/// A command of the plugin's has ended, and all that it has printed is to be read before what follows.
struct Said
{
};

/// A line of the trace, or one to be read between those.
struct Call
{
	std::string line;
	bool aside = false;
};

/// The last key kills or deletes, or would have done so had somebody pressed it.
struct Harm
{
	bool done = false;
};

/// plugin_exec returned.
struct Returned
{
	int result = 0;
};

/// The last words of a half that ends in the middle.
struct Crash
{
	/// Where something was executed: a file and the offset in its memory image.
	struct Place
	{
		std::string file;
		uint64_t offset = 0;
	};

	int signal = 0;           ///< 0: it has called exit()
	int status = 0;           ///< ... with that
	std::string what;         ///< the exception that nobody caught
	std::string event;        ///< the last key, and the last signal that was emitted after it
	std::string call;         ///< the plugin's last one, as in a trace
	std::string gone;         ///< an object that it seems to have used after its end
	std::vector<Place> stack; ///< the innermost place first
};

using ToViewer = std::variant<Loaded, Failed, Frame, Meaning, Note, Call, Harm, Returned, Crash, Said>;

/// No message has more bytes.
constexpr size_t mostMessageBytes = 64 << 20;

/// A message in bytes, and back. Nothing: the bytes are no such message, whatever else they are.
std::string encode(const ToHost &message);
std::string encode(const ToViewer &message);
std::optional<ToHost> decodeToHost(std::string_view bytes);
std::optional<ToViewer> decodeToViewer(std::string_view bytes);

} // namespace desk

#endif

#include "session.h"

#include "pixel_canvas.h"
#include "recordings.h"
#include "sandbox.h"
#include "visible_text.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <sstream>
#include <utility>
#include <variant>

namespace desk
{

namespace
{

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds patienceWithTheEnd(1);    // for a plugin to end by itself
constexpr seconds patienceWithAFailure(10); // with its half then, or with a tool that it runs in
constexpr seconds patienceWithItsHalf(60);  // for its half to end; a tool may be searching for leaks
constexpr int exitsThatEnd = 3;             // while the plugin is busy
constexpr int mostExits = 1000;             // after a script, if the plugin does not return
constexpr milliseconds longestRepeat(800);  // between two events of a held key, which terminals do not mark

// The panel over the picture, within the 80 columns that every terminal shows.
constexpr int panelLeft = 48, panelWidth = 78 * 8, panelRow = 20, panelMargin = 8;
constexpr int panelTitle = 30, panelEdge = 4;

std::string lineFor(int result)
{
	// -1 alone would look like a failure.
	return "plugin_exec returned " + std::to_string(result) +
	       (result == -1 ? ": the viewer left the menu\n" : "\n");
}

} // namespace

Session::Session(const Options &given, Stage of)
	: options(given), stage(std::move(of)), script(given.keys.begin(), given.keys.end()), plays(given.plays)
{}

void Session::run()
{
	if (stage.holdsErrorsBack)
		NoteLog::get().holdBack();
	try {
		if (pipe2(errors, O_CLOEXEC | O_NONBLOCK) != 0)
			throw Error(std::string("cannot start: ") + std::strerror(errno), statusNotToItsEnd);
		if (options.watch)
			watch = Watch::start(options.plugin);
		startHalf();
		while (state != State::over) {
			pressNext();
			wait();
		}
	} catch (const Error &error) {
		failure = error;
	} catch (const std::exception &error) { // whatever it is, the screen is to be given back
		failure.emplace(error.what(), statusNotToItsEnd);
	}
	close();
}

void Session::startHalf()
{
	Start start;
	start.served.insert(start.served.end(), options.served.begin(), options.served.end());
	const std::vector<std::string> sandbox = sandboxFor(start.served);
	fcntl(errors[1], F_SETFL, 0); // writers wait when the pipe is full
	half = OtherHalf::start(stage.half, sandbox, options.through, errors[1]);
	start.plugin = options.plugin;
	start.contained = !sandbox.empty();
	start.root = start.contained ? Sandbox::receiver : options.root;
	start.asIs = options.asIs;
	start.lang = options.lang;
	start.catalogue = options.catalogue;
	start.skin = stage.skinText;
	start.rowHeight = stage.rowHeight;
	start.draws = stage.draws || !options.pictures.empty();
	start.describes = !options.dump.empty();
	start.traces = !options.trace.empty() || !options.debug.empty();
	half->send(start);
	half->send(Load());
	state = State::busy;
	busySince = Clock::now();
}

/// The command line of the sandbox that wraps the plugin's half; empty without --root or where no sandbox works.
std::vector<std::string> Session::sandboxFor(const std::vector<std::string> &served)
{
	namespace fs = std::filesystem;
	const bool isElsewhere = !options.through.empty();
	if (options.root.empty() || (!isElsewhere && access(options.root.c_str(), R_OK | X_OK) != 0))
		return {}; // the half reports the reason
	std::vector<std::string> words;
	std::string note, whyNot = "--through says how the plugin's half is started";
	if (!isElsewhere) {
		const fs::path programs = fs::path(stage.half).parent_path();
		Sandbox sandbox{options.root,
		                served,
		                {options.plugin, programs.parent_path(), programs / DESK_INSTALLED_CATALOGUES}};
		if (const size_t colon = options.catalogue.find(':'); colon != std::string::npos)
			sandbox.needed.push_back(options.catalogue.substr(colon + 1));
		words = sandbox.command(note);
	}
	const bool isFirst = !contains;
	if (isFirst)
		contains = !isElsewhere && works(words, whyNot);
	if (!*contains)
		note = "deskhost: --root is no sandbox here (" + whyNot +
		       "): only known calls are led to that folder, and commands and scripts with the word kill are "
		       "not run";
	if (isFirst && !note.empty())
		NoteLog::get().add(note);
	return *contains ? words : std::vector<std::string>();
}

void Session::listen()
{
	while (half) {
		std::optional<ToViewer> message = half->next();
		if (!message)
			break;
		std::visit([this](auto &kind) { handle(kind); }, *message);
	}
	if (half && half->isBroken())
		giveUp("what comes from its half are no messages, or one is larger than 64 MB");
}

void Session::openScreen()
{
	if (screen)
		return;
	screen = stage.openScreen();
	if (!stage.note.empty())
		NoteLog::get().add(stage.note);
}

/// After the plugin and the screen have been opened: if either fails, the old recordings remain.
void Session::openRecordings()
{
	if (!std::exchange(isRecording, true))
		desk::openRecordings(options, recorder);
}

void Session::handle(Loaded &)
{
	openScreen();
	openRecordings();
	hidePanel();
	if (!afterLoading.empty())
		say(std::exchange(afterLoading, {}));
	nextRecord = "start";
	busySince = Clock::now();
	half->send(Run{replays, screen->console()});
}

void Session::handle(Failed &message)
{
	if (!screen || !watch) {
		readErrors();
		NoteLog::get().endLine();
		NoteLog::get().add("deskhost: " + message.why); // at once: the half may take its time
		failure.emplace("", message.status == statusBadArguments ? statusBadArguments : statusNotToItsEnd);
		return letHalfEnd(patienceWithAFailure);
	}
	say("deskhost: " + message.why);
	half.reset();
	state = State::gone;
}

/// False: nothing is loaded, and the half, which sent what comes only then, is ended.
bool Session::expectLoaded()
{
	if (!screen)
		giveUp("its half sent what comes after loading only; does a constructor in the plugin call exec()?");
	return screen != nullptr;
}

void Session::handle(Frame &message)
{
	if (!expectLoaded())
		return;
	if (secondsShown > 0)
		hidePanel();
	const std::optional<Rect> changes = picture.apply(std::move(message.edit));
	if (!changes)
		return giveUp("what comes from its half does not fit together");
	if (Canvas *canvas = screen ? screen->canvas() : nullptr;
	    canvas && panel.reach().empty() && !changes->empty()) {
		picture.drawChanges(*canvas);
		screen->present(*changes);
	} else
		show(*changes);
	if (question != message.question) {
		question = message.question;
		if (question && screen) { // drops input from before the question was visible
			screen->settle();
			while (fromScreen()) {
			}
			typed.clear();
			meant.clear();
		}
	}
	if (nextRecord)
		recorder.record(*nextRecord, message.windows, picture);
	nextRecord.reset();
	if (message.waits)
		state = State::waiting;
}

void Session::handle(Meaning &message)
{
	if (!expectLoaded())
		return;
	meant.assign(message.keys.begin(), message.keys.end());
	state = State::waiting;
}

void Session::handle(Note &message)
{
	if (message.mistake) {
		++mistakes;
		NoteLog::get().add("deskhost: " + std::filesystem::path(options.plugin).filename().string() + ": " +
		                   message.line);
	} else if (message.urgent)
		say(message.line);
	else
		NoteLog::get().add(message.line);
}

void Session::handle(CommandEnded &)
{
	readErrors();
	NoteLog::get().endLine();
}

void Session::handle(Call &message)
{
	openScreen();
	openRecordings();
	if (!message.aside)
		recorder.call(message.line);
	if (!options.debug.empty() && message.line.rfind("eDebug(", 0) != 0) // its text comes as a note
		NoteLog::get().addQuietly(message.line);
}

void Session::handle(Harm &message)
{
	if (!message.done)
		script.clear();
	else if (!harmless)
		harmless = history.empty() ? 0 : history.size() - 1;
}

void Session::handle(Returned &message)
{
	if (!expectLoaded())
		return;
	readErrors();
	returned += lineFor(message.result);
	std::string rest;
	for (const Key key : script)
		rest += std::string(" ") + keyName(key);
	if (!rest.empty())
		NoteLog::get().add("deskhost: the plugin returned before these keys were pressed:" + rest);
	meant.clear();
	leaving = false;
	exits = 0;
	if (!screen->lost().empty())
		throw Error(screen->lost(), statusNotToItsEnd);
	if (--plays > 0 && !screen->closed()) {
		script.assign(options.keys.begin(), options.keys.end());
		half->send(Load());
		busySince = Clock::now();
		state = State::busy;
	} else
		letHalfEnd(patienceWithItsHalf);
}

void Session::handle(Crash &message)
{
	crash = std::move(message);
	openRecordings();
}

/// Handles the end of the half, and ends a half that is overdue.
void Session::lookForEnd()
{
	if (half && deadline && Clock::now() >= *deadline) {
		deadline.reset();
		half->kill();
		if (half->isSilent() && whyEnded.empty())
			whyEnded = "it went on without a way to here";
		if (screen && screen->closed() && !failure)
			throw Error(!screen->lost().empty() ? screen->lost()
			                                    : "the window was closed while the plugin or a "
			                                      "command was busy; ended without waiting for it",
			            statusNotToItsEnd);
	}
	if (half && half->isSilent() && !half->ending() && !deadline && state != State::finishing)
		deadline = Clock::now() + patienceWithTheEnd; // the process may have executed another program
	if (!half || !half->ending())
		return;
	const int how = *half->ending();
	half.reset();
	deadline.reset();
	if (state == State::finishing && (how == 0 || failure))
		state = State::over;
	else if (state == State::finishing)
		throw Error("the half that ran the plugin did not end well: " +
		                reportOf(std::nullopt, how, options.plugin).lines.front(),
		            statusNotToItsEnd);
	else {
		CrashReport report = reportOf(crash, how, options.plugin);
		if (!whyEnded.empty())
			report.lines = {"It was ended, because " + whyEnded};
		reportEnd(report);
	}
}

void Session::reportEnd(const CrashReport &report)
{
	readErrors();
	NoteLog &notes = NoteLog::get();
	notes.endLine();
	notes.add("deskhost: the plugin has not run to its end");
	for (const std::string &line : report.lines)
		notes.add("deskhost: " + line);
	for (const std::string &line : report.stack)
		notes.addToFile("deskhost: " + line);
	if (!replays)
		script.clear();
	meant.clear();
	typed.clear();
	nextRecord.reset();
	if (!screen || !screen->hasKeys())
		throw Error("", statusNotToItsEnd);
	std::vector<std::string> lines = report.lines;
	lines.push_back("A key starts it anew, exit leaves.");
	showPanel("The plugin has not run to its end", lines);
	crashed = true;
	state = State::gone;
}

void Session::startAgain(bool pressesAgain)
{
	half.reset();
	crash.reset();
	crashed = false;
	whyEnded.clear();
	deadline.reset();
	meant.clear();
	typed.clear();
	question = 0;
	mistakes = 0;
	if (!pressesAgain || !replays || harmless)
		script.clear(); // else keys that a failed version did not get remain
	afterLoading.clear();
	leaving = false;
	replays = pressesAgain;
	if (pressesAgain) {
		const size_t count = harmless.value_or(history.size());
		script.insert(script.begin(), history.begin(), history.begin() + static_cast<std::ptrdiff_t>(count));
		if (count < history.size())
			afterLoading = std::string("deskhost: not pressed again, because it killed or deleted: ") +
			               keyName(history[count]);
	}
	history.clear();
	harmless.reset();
	startHalf();
}

/// The half ends by itself, so that a tool around it can print its report.
void Session::letHalfEnd(std::chrono::seconds patience)
{
	half->hangUp();
	deadline = Clock::now() + patience;
	state = State::finishing;
}

void Session::giveUp(const std::string &reason)
{
	whyEnded = reason;
	half->kill();
}

void Session::pressNext()
{
	while (state == State::waiting) {
		if (screen->closed()) {
			script.clear();
			meant.clear();
			leaving = true;
		}
		if (!script.empty()) {
			const Key key = script.front();
			script.pop_front();
			press(key, true);
			continue;
		}
		replays = false;
		if (!meant.empty()) {
			const Key key = meant.front();
			meant.pop_front();
			press(key, true);
			continue;
		}
		if (!leaving) {
			const std::optional<Input> input = takeInput();
			if (!input && screen->hasKeys())
				return;
			leaving = !input;
			if (input && input->repeat && question)
				continue;
			if (input && std::holds_alternative<SavePicture>(input->what))
				savePicture();
			else if (input)
				hidePanel();
			if (const Key *key = input ? std::get_if<Key>(&input->what) : nullptr)
				press(*key, true);
			if (const Click *click = input ? std::get_if<Click>(&input->what) : nullptr) {
				half->send(*click);
				state = State::busy;
				busySince = Clock::now();
			}
			continue;
		}
		if (++exits > mostExits)
			return giveUp("it does not return although exit was pressed " + std::to_string(mostExits) +
			              " times; see that its windows end their exec()");
		press(Key::exit, false);
	}
}

void Session::press(Key key, bool isSomebodys)
{
	if (!options.debug.empty())
		NoteLog::get().addQuietly(std::string("key ") + keyName(key));
	if (isSomebodys) {
		nextRecord = keyName(key);
		if (watch) // only --watch repeats keys
			history.push_back(key);
	}
	state = State::busy;
	busySince = Clock::now();
	half->send(Press{key, replays});
}

std::optional<Input> Session::takeInput()
{
	if (typed.empty())
		return fromScreen();
	const Input input = typed.front();
	typed.pop_front();
	return input;
}

std::optional<Input> Session::fromScreen()
{
	std::optional<Input> input = screen->take();
	if (const Key *key = input ? std::get_if<Key>(&input->what) : nullptr) {
		const Clock::time_point now = Clock::now();
		input->repeat = input->repeat || (lastKey == *key && now - lastKeyAt < longestRepeat);
		lastKey = *key;
		lastKeyAt = now;
	}
	return input;
}

/// Handles input while there is no plugin.
void Session::decide()
{
	while (state == State::gone) {
		const std::optional<Input> input = fromScreen();
		if (screen->closed() || (!input && !screen->hasKeys()))
			throw Error(screen->lost(), statusNotToItsEnd);
		if (!input)
			return;
		if (std::holds_alternative<SavePicture>(input->what))
			savePicture();
		const Key *key = std::get_if<Key>(&input->what);
		if (key && *key == Key::exit)
			throw Error("", statusNotToItsEnd);
		if (key && crashed)
			startAgain(false);
		else if (!crashed && !std::holds_alternative<SavePicture>(input->what))
			hidePanel();
	}
}

/// Shows that the plugin is busy, and ends it on request.
void Session::watchBusy()
{
	if (state == State::finishing && screen && half && deadline) {
		bool leaves = screen->closed();
		while (const std::optional<Input> input = fromScreen())
			if (const Key *key = std::get_if<Key>(&input->what))
				leaves = leaves || *key == Key::exit;
		if (leaves)
			deadline = std::min(*deadline, Clock::now() + patienceWithTheEnd);
	}
	if (state != State::busy || !screen || !half)
		return;
	if (screen->closed()) {
		if (!deadline)
			deadline = Clock::now() + patienceWithTheEnd;
		return;
	}
	const auto busy = static_cast<int>(duration_cast<seconds>(Clock::now() - busySince).count());
	if (busy < 1 || !screen->hasKeys())
		return;
	if (busy != secondsShown) {
		showPanel("Busy", {"The plugin has not answered for " + std::to_string(busy) + " s.",
		                   "Exit, pressed three times, ends it."});
		secondsShown = busy;
	}
	while (const std::optional<Input> input = fromScreen()) {
		typed.push_back(*input);
		const Key *key = std::get_if<Key>(&input->what);
		if (key && *key == Key::exit && ++exitsWhileBusy == exitsThatEnd)
			giveUp("it had not answered for " + std::to_string(busy) +
			       " s, and exit was pressed three times");
	}
}

// Saves to the current folder under the first unused name.
void Session::savePicture()
{
	namespace fs = std::filesystem;
	std::error_code failed;
	fs::path path;
	int number = 1;
	do
		path = fs::absolute("deskhost-" + std::to_string(number++) + ".png", failed);
	while (fs::exists(path, failed));
	PixelCanvas canvas;
	picture.draw(canvas, wholeScreen);
	try {
		canvas.writePng(path);
		say("deskhost: saved " + path.filename().string() + " in " + path.parent_path().string());
	} catch (const Error &error) {
		say("deskhost: " + error.line + "; start deskhost in a folder that can be written");
	}
}

void Session::show(const Rect &changes)
{
	Canvas *canvas = screen ? screen->canvas() : nullptr;
	if (!canvas || changes.empty())
		return;
	const Rect &area = canvas->paintsInParts() ? changes : wholeScreen;
	picture.draw(*canvas, area);
	panel.draw(*canvas, area);
	screen->present(changes);
}

void Session::showPanel(const std::string &title, const std::vector<std::string> &lines)
{
	std::vector<std::string> rows;
	for (const std::string &line : lines)
		for (std::string &row : textRows(visibleText(line), (panelWidth - 2 * panelMargin) / 8))
			rows.push_back(std::move(row));
	constexpr size_t most = (screenHeight - panelTitle - 2 * panelEdge - 2 * panelMargin) / panelRow;
	rows.resize(std::min(rows.size(), most));

	const int height = static_cast<int>(rows.size()) * panelRow + 2 * panelMargin;
	const int top = screenHeight - 2 * panelEdge - height;
	const Rect before = panel.reach();
	panel = {};
	panel.window({panelEdge, top - panelTitle, screenWidth - 2 * panelEdge, panelTitle + height + panelEdge},
	             {panelLeft, top, panelWidth, height}, title, stage.skin.window);
	TextStyle style;
	style.color = stage.skin.window.titleText;
	style.face = Face::prose;
	style.whole = true;
	int y = top + panelMargin;
	for (const std::string &row : rows) {
		panel.text({panelLeft + panelMargin, y, panelWidth - 2 * panelMargin, panelRow}, row, style);
		y += panelRow;
	}
	secondsShown = 0;
	show(before.united(panel.reach()).intersected(wholeScreen));
}

void Session::hidePanel()
{
	const Rect before = panel.reach().intersected(wholeScreen);
	panel = {};
	secondsShown = 0;
	exitsWhileBusy = 0;
	show(before);
}

/// Shows a line that the person must not miss.
void Session::say(const std::string &line)
{
	NoteLog::get().add(line);
	showPanel("Note", {line});
}

void Session::wait()
{
	const short wire = static_cast<short>(half && half->wantsToWrite() ? POLLIN | POLLOUT : POLLIN);
	pollfd ends[] = {{signals.descriptor(), POLLIN, 0},
	                 {half && !half->isSilent() ? half->descriptor() : -1, wire, 0},
	                 {errors[0], POLLIN, 0},
	                 {watch ? watch->descriptor() : -1, POLLIN, 0},
	                 {screen ? screen->descriptor() : -1, POLLIN, 0}};
	poll(ends, std::size(ends), patience());
	if (ends[0].revents)
		handleSignals();
	if (state == State::over)
		return;
	if (half && (ends[1].revents || half->ending())) {
		half->flush();
		half->read();
		listen();
	}
	if (ends[2].revents) // after messages, which precede a command's output
		readErrors();
	if (watch && ends[3].revents)
		watch->readEvents();
	if (screen)
		screen->readInput();
	if (state != State::finishing && watch && watch->changed() && screen)
		startAgain(true);
	watchBusy();
	decide();
	lookForEnd();
}

/// Milliseconds until the next deadline; -1: none.
int Session::patience() const
{
	int least = screen ? screen->patience() : -1;
	const auto within = [&](int time) {
		if (time >= 0)
			least = least < 0 ? time : std::min(least, time);
	};
	const auto until = [&](Clock::time_point when) {
		within(std::max(0, static_cast<int>(duration_cast<milliseconds>(when - Clock::now()).count()) + 1));
	};
	if (watch)
		within(watch->patience());
	if (half && deadline)
		until(*deadline);
	if (state == State::busy && screen && screen->hasKeys())
		until(busySince + seconds(secondsShown + 1));
	if (half && half->ending() && state != State::gone)
		within(0);
	return least;
}

/// Reads a limited amount, because a process may write without end.
void Session::readErrors()
{
	char bytes[4096];
	ssize_t count = 0;
	for (int pieces = 0; pieces < 16 && (count = read(errors[0], bytes, sizeof bytes)) > 0; ++pieces)
		NoteLog::get().add(bytes, static_cast<size_t>(count));
}

void Session::handleSignals()
{
	while (const std::optional<int> signal = signals.take()) {
		if (Signals::isEnd(*signal)) {
			endingSignal = *signal;
			state = State::over;
			return; // ignores the rest
		} else if (*signal == SIGCHLD) {
			if (half)
				half->reap();
			reapOrphans(half.get());
		} else if (screen)
			screen->handleSignal(*signal);
		else if (*signal == SIGTSTP)
			raise(SIGSTOP);
	}
}

/// Releases everything. Throws the session's error, else an error of the recordings.
void Session::close()
{
	half.reset();
	readErrors();
	NoteLog::get().endLine();
	screen.reset();
	NoteLog::get().release();
	if (stage.holdsErrorsBack)
		std::fputs(std::exchange(returned, {}).c_str(), stderr);
	const std::string unwritten = recorder.close();
	const bool noted = NoteLog::get().close();
	if (endingSignal)
		endBy(endingSignal);

	errno = 0;
	const bool printed = std::fputs(returned.c_str(), stdout) != EOF && std::fflush(stdout) == 0;
	const std::string whyNot = std::strerror(errno);
	if (failure)
		throw *failure;
	if (options.strict && mistakes > 0)
		throw Error("what was noticed about the plugin is an error with --strict; see above",
		            statusNotToItsEnd);
	if (!unwritten.empty())
		throw Error(unwritten);
	if (!noted)
		throw Error("cannot write all debug lines to '" + options.debug + "'; is the disk full?");
	if (!printed)
		throw Error("cannot write to standard output: " + whyNot);
}

} // namespace desk

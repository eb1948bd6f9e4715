#include "desk.h"

#include "description.h"
#include "mistakes.h"
#include "state.h"
#include "trace.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>

namespace desk
{

Desk &Desk::get()
{
	static Desk desk;
	return desk;
}

void Desk::setViewer(Peer *peer, bool wantsFrames, bool wantsDescriptions)
{
	viewer = peer;
	draws = wantsFrames;
	describes = wantsDescriptions;
	frame = {};
}

void Desk::note(const std::string &line, bool urgent)
{
	if (viewer)
		viewer->send(Note{line, urgent});
	else
		std::fputs((line + '\n').c_str(), stderr);
}

void Desk::reportMistake(const eWidget &widget, const std::string &what)
{
	const std::string line = Trace::get().nameOf(&widget) + ": " + what;
	if (!reported.insert(what).second)
		return;
	if (viewer)
		viewer->send(Note{line, false, true});
	else
		note(line);
}

void Desk::commandEnded()
{
	if (viewer)
		viewer->send(CommandEnded());
}

void Desk::endRun()
{
	for (const eWidget *window : openWindows.visible())
		reportMistake(
			*window,
			"the window is still shown after plugin_exec has returned; hide() it, or end its life: \"" +
				State::of(*window).text + '"');
	openWindows.forgetAll();
	question = 0; // still set after an exception
	showFrame(false);
}

bool Desk::permits(const std::string &what)
{
	if (viewer)
		viewer->send(Harm{!pressedAgain});
	if (pressedAgain)
		note("deskhost: not done, because nobody pressed the key: " + what, true);
	return !pressedAgain;
}

void Desk::leave(eWidget &window)
{
	if (openWindows.runs(window))
		State::of(window).end(-1);
}

bool Desk::run(eWidget &window)
{
	const unsigned outer = std::exchange(question, State::of(window).isMessageBox ? ++questions : 0);
	openWindows.start(window);
	while (openWindows.runs(window) && !State::of(window).ended)
		openWindows.dispatch(nextKey());
	const bool alive = openWindows.runs(window);
	openWindows.stop(window);
	question = outer;
	return alive;
}

Key Desk::nextKey()
{
	const Trace::Quiet waiting;
	lookForMistakes(openWindows);
	showFrame(true);
	for (;;) {
		const std::optional<ToHost> message = viewer ? viewer->receive() : std::nullopt;
		if (!message)
			std::_Exit(1); // without a viewer nobody can leave the plugin
		if (const Click *click = std::get_if<Click>(&*message)) {
			Meaning meaning{openWindows.keysAt(click->x, click->y)};
			if (meaning.keys != openWindows.keysAt(click->upX, click->upY))
				meaning.keys.clear(); // released over another target
			viewer->send(meaning);
		} else if (const Press *press = std::get_if<Press>(&*message)) {
			pressedAgain = press->again;
			Trace::get().pressed(keyName(press->key));
			return press->key;
		}
	}
}

void Desk::showFrame(bool waits)
{
	if (!viewer)
		return;
	const Trace::Quiet drawing; // also ignores calls by the plugin's own classes while they draw
	Frame message;
	message.waits = waits;
	message.question = question;
	if (draws) {
		DisplayList next;
		paint(next);
		message.edit = next.editOf(frame);
		frame = std::move(next);
	}
	if (describes)
		message.windows = describe(openWindows);
	viewer->send(std::move(message));
}

} // namespace desk

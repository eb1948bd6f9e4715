#include "desk.h"

#include "description.h"
#include "state.h"
#include "trace.h"

#include <cstdio>
#include <cstdlib>

namespace desk
{

using State = eWidget::State;

Desk &Desk::get()
{
	static Desk desk;
	return desk;
}

void Desk::setScreen(std::unique_ptr<Screen> screen)
{
	activeScreen = std::move(screen);
	frame = {};
	if (activeScreen)
		activeScreen->onClick([this](int x, int y) { return openWindows.keysAt(x, y); });
}

Screen &Desk::screen()
{
	if (!activeScreen)
		activeScreen = makeNoScreen();
	return *activeScreen;
}

void Desk::beginRun()
{
	due = "start";
	keys.restart();
}

void Desk::endRun()
{
	openWindows.forgetAll();
	showFrame();
	if (const std::string rest = keys.takeRest(); !rest.empty())
		screen().note("deskhost: the plugin returned before these keys were pressed:" + rest);
}

void Desk::pressAgain()
{
	if (const std::optional<Key> harmful = keys.pressAgain())
		screen().notify(std::string("deskhost: not pressed again, because it killed or deleted: ") +
		                keyName(*harmful));
}

bool Desk::permits(const std::string &what)
{
	if (keys.permitsHarm())
		return true;
	screen().notify("deskhost: not done, because nobody pressed the key: " + what);
	return false;
}

void Desk::leave(eWidget &window)
{
	if (openWindows.runs(window))
		State::of(window).end(habits.left);
}

bool Desk::run(eWidget &window)
{
	openWindows.start(window);
	while (openWindows.runs(window) && !State::of(window).ended)
		openWindows.dispatch(nextKey());
	const bool alive = openWindows.runs(window);
	openWindows.stop(window);
	return alive;
}

Key Desk::nextKey()
{
	showFrame();
	const std::optional<KeySource::Press> press = keys.next(screen());
	if (!press) {
		activeScreen.reset(); // gives the terminal back
		std::fputs("deskhost: the plugin does not return although 'exit' was pressed 1000 times; "
		           "see that its windows end their exec()\n",
		           stderr);
		std::fflush(nullptr);
		std::_Exit(1);
	}
	if (press->viewers)
		due = keyName(press->key);
	return press->key;
}

void Desk::showFrame()
{
	if (keys.restarts())
		return;                 // the old picture stays
	const Trace::Quiet drawing; // also of what the plugin's own classes call while they are drawn
	if (Canvas *canvas = screen().canvas()) {
		DisplayList next;
		paint(next);
		const Rect changes = next.changesFrom(frame);
		frame = std::move(next);
		if (!changes.empty()) {
			frame.draw(*canvas, canvas->paintsInParts() ? changes : wholeScreen);
			screen().present(changes);
		}
	}
	if (due && activeRecorder && activeRecorder->on())
		activeRecorder->record(
			*due, [this] { return describe(openWindows); }, [this](Canvas &canvas) { paint(canvas); });
	due.reset();
}

} // namespace desk

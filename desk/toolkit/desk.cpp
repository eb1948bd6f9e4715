#include "desk.h"

#include "deco.h"
#include "list.h"
#include "state.h"
#include "trace.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <typeinfo>

namespace desk
{

namespace
{

using State = eWidget::State;

constexpr int patience = 1000; // exits in one play before the plugin counts as stuck

std::vector<Color> &palette()
{
	static std::vector<Color> colors;
	return colors;
}

std::string className(const eWidget &widget)
{
	int status = 0;
	const char *mangled = typeid(widget).name();
	char *name = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
	std::string text = name ? name : mangled;
	std::free(name);
	return text;
}

eWidget *firstStop(const State &window)
{
	for (eWidget *child : window.children)
		if (State::of(*child).takesFocus && State::of(*child).visible)
			return child;
	return nullptr;
}

void paintWidget(eWidget &widget, int x, int y, Canvas &canvas)
{
	const State &state = State::of(widget);
	gPainter painter(canvas, x, y);
	State::draw(widget, painter, eRect(0, 0, state.width, state.height));
	const eRect &client = widget.getClientRect();
	if (state.children.empty())
		return;
	canvas.pushClip(painter.onScreen(client));
	for (eWidget *child : state.children) {
		const State &below = State::of(*child);
		if (!below.visible)
			continue;
		const int left = x + client.left + below.x;
		const int top = y + client.top + below.y;
		canvas.pushClip({left, top, below.width, below.height});
		paintWidget(*child, left, top, canvas);
		canvas.popClip();
	}
	canvas.popClip();
}

nlohmann::ordered_json describeWidget(const eWidget &widget)
{
	const State &state = State::of(widget);
	nlohmann::ordered_json json;
	json["class"] = className(widget);
	json["rect"] = {state.x, state.y, state.width, state.height};
	json["text"] = std::string(state.text);
	json["focus"] = Desk::get().focus() == &widget;
	json["shortcut"] = std::string(state.shortcut);
	if (const eListBoxBase *box = dynamic_cast<const eListBoxBase *>(&widget)) {
		const eListBoxBase::List &list = eListBoxBase::List::of(*box);
		json["count"] = list.count();
		json["current"] = list.entries.empty() ? -1 : list.current;
		json["rows"] = nlohmann::ordered_json::array();
		for (int i = 0; i < list.shown(); ++i) {
			const eListBoxEntry *entry = list.entries[static_cast<size_t>(list.top + i)];
			const eListBoxEntryText *text = dynamic_cast<const eListBoxEntryText *>(entry);
			json["rows"].push_back(text ? std::string(text->getText()) : std::string());
		}
		const eListBoxEntry *current = list.currentEntry();
		json["help"] = current ? std::string(current->getHelpText()) : std::string();
	}
	return json;
}

} // namespace

Desk &Desk::get()
{
	static Desk desk;
	return desk;
}

void Desk::setScreen(std::unique_ptr<Screen> screen)
{
	activeScreen = std::move(screen);
	frame = {};
}

Screen &Desk::screen()
{
	if (!activeScreen)
		activeScreen = makeNoScreen();
	return *activeScreen;
}

void Desk::beginPlay()
{
	due = "start";
	leaving = false;
	exits = 0;
}

void Desk::endPlay()
{
	// Windows that a plugin has left behind go with it: their code is about to be unloaded.
	visible.clear();
	running.clear();
	focused = nullptr;
	settle();
	if (script.empty())
		return;
	std::string unused;
	for (const Key key : script)
		unused += std::string(" ") + keyName(key);
	screen().note("deskhost: the plugin returned before these keys were pressed:" + unused);
	script.clear();
}

void Desk::shown(eWidget &window)
{
	visible.push_back(&window);
	updateFocus();
}

void Desk::hidden(eWidget &window)
{
	visible.erase(std::remove(visible.begin(), visible.end(), &window), visible.end());
	updateFocus();
}

void Desk::gone(eWidget &widget)
{
	visible.erase(std::remove(visible.begin(), visible.end(), &widget), visible.end());
	running.erase(std::remove(running.begin(), running.end(), &widget), running.end());
	if (focused == &widget)
		focused = nullptr; // it is too late to tell it
	updateFocus();
}

bool Desk::runs(const eWidget &window) const
{
	return std::find(running.begin(), running.end(), &window) != running.end();
}

void Desk::leave(eWidget &window)
{
	if (runs(window))
		State::of(window).end(leftResult);
}

void Desk::updateFocus()
{
	eWidget *next = nullptr;
	if (!running.empty()) {
		eWidget *window = running.back();
		State &state = State::of(*window);
		if (!state.focus || !State::of(*state.focus).visible)
			state.focus = firstStop(state);
		next = state.focus ? state.focus : window;
	}
	if (next == focused)
		return;
	eWidget *before = focused;
	focused = next;
	if (before)
		State::lostFocus(*before);
	if (next)
		State::gotFocus(*next);
}

bool Desk::run(eWidget &window)
{
	running.push_back(&window);
	updateFocus();
	while (runs(window) && !State::of(window).ended)
		dispatch(nextKey());
	const bool alive = runs(window);
	running.erase(std::remove(running.begin(), running.end(), &window), running.end());
	updateFocus();
	return alive;
}

Key Desk::nextKey()
{
	settle();
	if (!script.empty()) {
		const Key key = script.front();
		script.pop_front();
		due = keyName(key);
		return key;
	}
	if (!leaving) {
		if (const std::optional<Key> key = screen().waitKey()) {
			due = keyName(*key);
			return *key;
		}
		leaving = true;
	}
	if (++exits > patience) {
		activeScreen.reset(); // gives the terminal back
		std::fprintf(stderr,
		             "deskhost: the plugin does not return although 'exit' was pressed %d times; "
		             "see that its windows end their exec()\n",
		             patience);
		std::fflush(nullptr);
		std::_Exit(1);
	}
	return Key::exit;
}

void Desk::settle()
{
	const Trace::Quiet drawing; // also of what the plugin's own classes call while they are drawn
	if (Canvas *canvas = screen().canvas()) {
		DisplayList next;
		paint(next);
		const Rect changes = next.changesFrom(frame);
		const Rect area = canvas->paintsInParts() || changes.empty() ? changes : wholeScreen;
		frame = std::move(next);
		if (!area.empty()) {
			frame.draw(*canvas, area);
			screen().present(changes);
		}
	}
	if (due && activeRecorder && activeRecorder->on())
		activeRecorder->moment(
			*due, [this] { return describe(); }, [this](Canvas &canvas) { paint(canvas); });
	due.reset();
}

void Desk::dispatch(Key key)
{
	const eWidgetEvent event{key};
	eWidget &window = *running.back();
	eWidget &first = focused ? *focused : window;
	if (State::filter(first, event) || State::handle(first, event))
		return;
	if (&first != &window && runs(window) && !State::filter(window, event))
		State::handle(window, event);
}

void Desk::paint(Canvas &canvas) const
{
	canvas.fill({0, 0, screenWidth, screenHeight}, activeSkin.backdrop);
	for (eWidget *window : visible)
		paintWidget(*window, State::of(*window).x, State::of(*window).y, canvas);
}

nlohmann::ordered_json Desk::describe() const
{
	nlohmann::ordered_json windows = nlohmann::ordered_json::array();
	for (const eWidget *window : visible) {
		const State &state = State::of(*window);
		const eRect &client = window->getClientRect();
		nlohmann::ordered_json json;
		json["class"] = className(*window);
		json["title"] = std::string(state.text);
		json["client"] = {state.x + client.left, state.y + client.top, client.width(), client.height()};
		json["widgets"] = nlohmann::ordered_json::array();
		for (const eWidget *child : state.children)
			if (State::of(*child).visible)
				json["widgets"].push_back(describeWidget(*child));
		windows.push_back(json);
	}
	return windows;
}

} // namespace desk

gColor gPainter::index(desk::Color color)
{
	std::vector<desk::Color> &colors = desk::palette();
	const auto place = std::find(colors.begin(), colors.end(), color);
	const auto index = place - colors.begin();
	if (place == colors.end())
		colors.push_back(color);
	return {static_cast<int>(index)};
}

desk::Color gPainter::color(gColor index)
{
	const std::vector<desk::Color> &colors = desk::palette();
	const size_t i = static_cast<size_t>(index.color);
	return i < colors.size() ? colors[i] : desk::Color{};
}

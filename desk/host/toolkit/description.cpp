#include "description.h"

#include "list.h"
#include "state.h"

#include <nlohmann/json.hpp>

#include <cxxabi.h>

#include <cstdlib>
#include <string>
#include <typeinfo>

namespace desk
{

namespace
{

std::string className(const eWidget &widget)
{
	int status = 0;
	const char *mangled = typeid(widget).name();
	char *name = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
	std::string text = name ? name : mangled;
	std::free(name);
	return text;
}

nlohmann::ordered_json describeWidget(const eWidget &widget, const Windows &windows)
{
	const State &state = State::of(widget);
	nlohmann::ordered_json json;
	json["class"] = className(widget);
	json["rect"] = {state.x, state.y, state.width, state.height};
	json["text"] = std::string(state.text);
	json["focus"] = windows.focus() == &widget;
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

std::string describe(const Windows &windows)
{
	nlohmann::ordered_json list = nlohmann::ordered_json::array();
	for (const eWidget *window : windows.visible()) {
		const State &state = State::of(*window);
		const eRect &client = window->getClientRect();
		nlohmann::ordered_json json;
		json["class"] = className(*window);
		json["title"] = std::string(state.text);
		json["client"] = {state.x + client.left, state.y + client.top, client.width(), client.height()};
		json["widgets"] = nlohmann::ordered_json::array();
		for (const eWidget *child : state.children)
			if (State::of(*child).visible)
				json["widgets"].push_back(describeWidget(*child, windows));
		list.push_back(json);
	}
	return list.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace desk

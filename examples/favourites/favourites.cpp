// An editor of a list that it keeps in a file: shows what plugins do with lists. See "Recipes" in docs/plugins.md.

#include <toolkit.h>

#include <cstdio>
#include <libintl.h>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr const char *savedIn = "/var/favourites";
constexpr const char *newFile = "/var/favourites.new";

const char *translate(const char *text)
{
	return dcgettext(nullptr, text, LC_MESSAGES);
}

// Writes a new file and renames it to the old one's name, so that one of them survives any error.
bool save(const std::vector<std::string> &names)
{
	FILE *file = std::fopen(newFile, "w");
	if (!file)
		return false;
	bool written = true;
	for (const std::string &name : names)
		written = std::fprintf(file, "%s\n", name.c_str()) >= 0 && written;
	written = std::fclose(file) == 0 && written;
	if (written && std::rename(newFile, savedIn) == 0)
		return true;
	std::remove(newFile);
	return false;
}

std::vector<std::string> load()
{
	std::vector<std::string> names;
	FILE *file = std::fopen(savedIn, "r");
	if (!file)
		return names;
	std::string name;
	for (int c; (c = std::fgetc(file)) != EOF;)
		if (c != '\n')
			name += static_cast<char>(c);
		else if (!name.empty()) {
			names.push_back(name);
			name.clear();
		}
	if (!name.empty()) // without its line end
		names.push_back(name);
	std::fclose(file);
	return names;
}

/// Shows a text; any key closes it.
class Message : public eWindow
{
public:
	explicit Message(const char *text) : eWindow(1)
	{
		setText(translate("Favourites"));
		cmove(ePoint(210, 260));
		cresize(eSize(300, 60));
		eLabel *label = new eLabel(this, 0, 0, "eLabel");
		label->move(ePoint(10, 20));
		label->resize(eSize(280, 20));
		label->setText(text);
	}

	void run()
	{
		show();
		exec();
		hide();
	}

protected:
	int eventFilter(const eWidgetEvent &) override
	{
		accept();
		return 1;
	}
};

class Favourites : public eWindow
{
public:
	Favourites();

private:
	using Entry = eListBoxEntryText;

	eListBox<Entry> *list(ePoint position, eSize size);
	void button(const char *colour, const char *text, int left, void (Favourites::*pressed)());

	void moved(Entry *entry) { current = entry; }
	void letterChosen(Entry *entry);
	void add();
	void moveUp();
	void removeCurrent();
	void saveAll();

	void type(const std::string &what);

	eLabel *typed;
	eListBox<Entry> *names, *letters;
	std::vector<Entry *> entries; // of `names`, in their order; the list owns them
	Entry *current = nullptr;     // of `names`
	std::string word;             // the letters so far
};

Favourites::Favourites() : eWindow(1)
{
	setText(translate("Favourites"));
	cmove(ePoint(60, 100));
	cresize(eSize(600, 310));

	names = list(ePoint(15, 10), eSize(330, 200));
	names->selchanged.connect(SigC::slot(*this, &Favourites::moved));
	for (const std::string &name : load())
		entries.push_back(new Entry(names, name.c_str()));
	current = entries.empty() ? nullptr : entries.front(); // the list does not report its first entry

	letters = list(ePoint(360, 50), eSize(225, 160));
	letters->selected.connect(SigC::slot(*this, &Favourites::letterChosen));
	for (char letter = 'A'; letter <= 'Z'; ++letter)
		new Entry(letters, std::string(1, letter).c_str());

	typed = new eLabel(this, 0, 0, "eLabel");
	typed->move(ePoint(360, 10));
	typed->resize(eSize(225, 20));
	type("");

	button("red", translate("remove"), 15, &Favourites::removeCurrent);
	button("green", translate("add"), 160, &Favourites::add);
	button("yellow", translate("move up"), 305, &Favourites::moveUp);
	button("blue", translate("save"), 450, &Favourites::saveAll);
}

eListBox<eListBoxEntryText> *Favourites::list(ePoint position, eSize size)
{
	eListBox<Entry> *list = new eListBox<Entry>(this);
	list->move(position);
	list->resize(size);
	return list;
}

void Favourites::button(const char *colour, const char *text, int left, void (Favourites::*pressed)())
{
	eButton *button = new eButton(this, nullptr, 0, "eButton");
	button->move(ePoint(left, getClientRect().height() - 60));
	button->resize(eSize(135, 40));
	button->setShortcut(colour);
	button->setShortcutPixmap(colour);
	button->loadDeco();
	button->setText(text);
	button->selected.connect(SigC::slot(*this, pressed));
}

void Favourites::type(const std::string &what)
{
	word = what;
	typed->setText(word.empty() ? eString(translate("choose letters")) : eString(word));
}

// Null: the viewer leaves the list and the window.
void Favourites::letterChosen(Entry *entry)
{
	if (entry && word.size() < 20)
		type(word + entry->getText());
}

void Favourites::add()
{
	if (word.empty())
		return Message(translate("Choose letters first.")).run();
	Entry *entry = new Entry(nullptr, word.c_str());
	names->append(entry, true, false);
	entries.push_back(entry);
	current = entry;
	type("");
}

// A list takes entries only at its ends, so this removes the entry and all that will follow it, and appends them in
// the new order. Whatever the list reports meanwhile, the entry becomes the current one again.
void Favourites::moveUp()
{
	Entry *const entry = current;
	size_t place = 0;
	while (place < entries.size() && entries[place] != entry)
		++place;
	if (place == 0 || place == entries.size())
		return;
	std::swap(entries[place - 1], entries[place]);
	for (size_t i = place - 1; i < entries.size(); ++i)
		names->remove(entries[i], false);
	for (size_t i = place - 1; i < entries.size(); ++i)
		names->append(entries[i], entries[i] == entry, false);
	current = entry;
}

// Deleting is safe here: this is a button's signal, and no list handler runs. The list reports the new `current` when
// it removes the entry.
void Favourites::removeCurrent()
{
	for (size_t i = 0; i < entries.size(); ++i)
		if (entries[i] == current) {
			entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
			delete current;
			return;
		}
}

void Favourites::saveAll()
{
	std::vector<std::string> lines;
	for (const Entry *entry : entries)
		lines.push_back(entry->getText());
	Message(save(lines) ? translate("Saved.") : translate("It could not be saved.")).run();
}

} // namespace

extern "C" int plugin_exec()
{
	Favourites window;
	window.show();
	const int result = window.exec();
	window.hide();
	return result;
}

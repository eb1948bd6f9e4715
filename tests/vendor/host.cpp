// A made-up vendor's front end without a screen. It implements gui/gui.h, loads a plugin, presses the keys of a
// script, and writes the plugin's calls in the format of the desk host's trace.
//
//     vendor_host PLUGIN ROOT SCRIPT
//
// ROOT has the receiver's files, and commands in ROOT/bin; kills are only reported. SCRIPT has keys and conditions. A
// condition holds from its place on:
//
//     files=NAME  the receiver's files are in ROOT/NAME
//     fontsize=N  of the skin; 0: the skin has none
//     lost=N      pixels by which a client area is lower than requested
//     answer=N    every message box returns N at once
//     left=N      what exec() returns for a window that the viewer leaves
//     log=PATH    the value of ff_scan
//     format=0    eString::sprintf does nothing
//     texts=no    dcgettext returns null; for another word, the text with this word before it
//     open=no     no file opens
//     read=N      a file gives N bytes and then an error
//     close=N     fclose returns N
//     kill=N      system returns N for a kill
//     verbose=1   also traces look-ups, connections, positions of windows and contents of entries, and checks
//                 that the plugin leaves descriptors, environment, umask, folder, locale and ff_scan unchanged
//     trace       the trace begins here
//     again       runs the plugin once more

#include "breaking_file.h"
#include "gui/gui.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <set>
#include <sstream>

namespace
{

int muted = 0;
int lastNumber = 0;
std::map<const void *, int> numbers;
std::string root;
std::deque<std::string> script;
std::map<std::string, std::string> conditions;
void *plugin;

std::string decimal(long number)
{
	std::ostringstream text;
	text << number;
	return text.str();
}

bool given(const char *condition)
{
	return conditions.count(condition) > 0;
}

int number(const char *condition, int otherwise)
{
	return given(condition) ? std::atoi(conditions[condition].c_str()) : otherwise;
}

std::string nameOf(const void *object)
{
	if (!object)
		return "null";
	int &number = numbers[object];
	if (number == 0)
		number = ++lastNumber;
	return "#" + decimal(number);
}

std::string quoted(const std::string &text)
{
	static const char digits[] = "0123456789abcdef";
	std::string result = "\"";
	for (std::string::const_iterator c = text.begin(); c != text.end(); ++c) {
		const unsigned char byte = static_cast<unsigned char>(*c);
		if (byte == '\n')
			result += "\\n";
		else if (byte < ' ' || byte > '~')
			result += std::string("\\x") + digits[byte / 16] + digits[byte % 16];
		else if (byte == '"' || byte == '\\')
			result += std::string("\\") + *c;
		else
			result += *c;
	}
	return result + '"';
}

void line(const std::string &text)
{
	if (muted == 0)
		std::puts(text.c_str());
}

void call(const void *object, const std::string &what)
{
	if (muted == 0)
		line(nameOf(object) + '.' + what);
}

std::string pair(int a, int b)
{
	return "(" + decimal(a) + ", " + decimal(b) + ")";
}

std::string printed(const char *format, va_list values)
{
	char text[4096];
	std::vsnprintf(text, sizeof text, format, values);
	return text;
}

/// Maps a path to the receiver's files, but temporary files to this computer's.
std::string served(const std::string &path)
{
	if (path.compare(0, 9, "/var/tmp/") == 0)
		return path;
	return root + (given("files") ? '/' + conditions["files"] : "") + path;
}

const char *&logPath()
{
	return *static_cast<const char **>(dlsym(plugin, "ff_scan"));
}

/// The state of the process that a plugin must not change.
std::string process()
{
	std::ostringstream state;
	for (char **variable = environ; *variable; ++variable)
		state << *variable << '\n';
	const mode_t mask = umask(0);
	umask(mask);
	char folder[4096];
	state << "mask " << mask << "\nfolder " << (getcwd(folder, sizeof folder) ? folder : "none")
		  << "\nlocale " << std::setlocale(LC_ALL, NULL) << '\n';
	state << "log " << logPath() << '\n';
	DIR *descriptors = opendir("/proc/self/fd");
	std::set<std::string> open;
	for (const dirent *entry = descriptors ? readdir(descriptors) : NULL; entry; entry = readdir(descriptors))
		open.insert(entry->d_name);
	closedir(descriptors);
	for (std::set<std::string>::const_iterator name = open.begin(); name != open.end(); ++name)
		state << "descriptor " << *name << '\n';
	return state.str();
}

std::string processBefore; // at the begin of the run

void compareProcess()
{
	if (given("verbose") && muted == 0 && process() != processBefore)
		line("THE PROCESS HAS CHANGED from\n" + processBefore + "to\n" + process());
}

void connected()
{
	if (given("verbose"))
		line("a slot is connected");
}

/// Applies the conditions at the head of the script.
void takeConditions()
{
	for (; !script.empty(); script.pop_front()) {
		const std::string word = script.front();
		const std::size_t sign = word.find('=');
		if (word == "trace")
			--muted;
		else if (sign == word.npos)
			return;
		else
			conditions[word.substr(0, sign)] = word.substr(sign + 1);
		if (word.compare(0, 4, "log=") == 0)
			logPath() = conditions["log"].c_str();
		else if (word.compare(0, 6, "files=") == 0)
			setenv("PATH", (served("/bin") + ":/usr/bin:/bin").c_str(), 1);
		else
			continue;
		processBefore = process();
	}
}

std::string nextKey()
{
	takeConditions();
	if (script.empty() || script.front() == "again")
		return "exit";
	const std::string key = script.front();
	script.pop_front();
	return key;
}

/// Mutes the calls of a base class's constructor; evaluated before it runs.
template <class T> T quietly(T value)
{
	++muted;
	return value;
}

} // namespace

// The linker redirects the plugin's libc calls to these functions.
extern "C" {

FILE *__wrap_fopen(const char *path, const char *mode)
{
	FILE *stream = given("open") ? NULL : std::fopen(served(path).c_str(), mode);
	if (stream && given("read"))
		stream = BreakingFile::open(stream, static_cast<std::size_t>(number("read", 0)), false);
	line("fopen(" + quoted(path) + ", " + quoted(mode) + ") = " + (stream ? "stream" : "null"));
	return stream;
}

int __wrap_fclose(FILE *stream)
{
	const char *what = stream ? "fclose(stream)" : "fclose(null)";
	const int result = stream ? number("close", std::fclose(stream)) : EOF;
	line(what + (" = " + decimal(result)));
	return result;
}

int __wrap_remove(const char *path)
{
	line("remove(" + quoted(path) + ")");
	return std::remove(served(path).c_str());
}

char *__wrap_dcgettext(const char *domain, const char *id, int category)
{
	static std::set<std::string> found;
	if (given("verbose"))
		line(std::string("dcgettext(") + (domain ? domain : "null") + ", " + quoted(id) + ", " +
		     decimal(category) + ")");
	if (!given("texts"))
		return const_cast<char *>(id);
	if (conditions["texts"] == "no")
		return NULL;
	return const_cast<char *>(found.insert(conditions["texts"] + id).first->c_str());
}

int __wrap_system(const char *command)
{
	line("system(" + quoted(command) + ")");
	compareProcess();
	return std::strncmp(command, "kill", 4) == 0 ? number("kill", 0) : std::system(command);
}
}

eString &eString::sprintf(char *format, ...)
{
	va_list values;
	va_start(values, format);
	const std::string text = printed(format, values);
	va_end(values);
	if (given("format"))
		return *this;
	line("eString.sprintf(" + quoted(format) + ") = " + quoted(text));
	assign(text);
	return *this;
}

void eDebug(const char *format, ...)
{
	va_list values;
	va_start(values, format);
	line("eDebug(" + quoted(printed(format, values)) + ")");
	va_end(values);
}

eSkin *eSkin::getActive()
{
	static eSkin skin;
	line("eSkin.getActive()");
	return &skin;
}

int eSkin::queryValue(const eString &value, int fallback) const
{
	const int size = value == "fontsize" ? number("fontsize", 20) : 0;
	const int result = size ? size : fallback;
	line("eSkin.queryValue(" + quoted(value) + ", " + decimal(fallback) + ") = " + decimal(result));
	return result;
}

eWidget::eWidget(eWidget *of, int takefocus)
	: parent(of), focus(NULL), canFocus(takefocus != 0), visible(of != NULL), ended(true), traced(false),
	  result(0)
{
	std::memset(tag, 'w', sizeof tag);
	if (parent)
		parent->children.push_back(this);
}

eWidget::~eWidget()
{
	++muted;
	while (!children.empty())
		delete children.back();
	if (parent)
		parent->children.remove(this);
	if (parent && parent->focus == this)
		parent->focus = NULL;
	numbers.erase(this);
	--muted;
}

void eWidget::willShow() {}
void eWidget::willHide() {}
void eWidget::setPalette() {}
int eWidget::eventFilter(const eWidgetEvent &)
{
	return 0;
}
int eWidget::keyDown(int)
{
	return 0;
}
int eWidget::keyUp(int)
{
	return 0;
}
void eWidget::gotFocus() {}
void eWidget::lostFocus() {}
void eWidget::recalcClientRect() {}
int eWidget::eventHandler(const eWidgetEvent &)
{
	return 0;
}
void eWidget::redrawWidget(gPainter *, const eRect &) {}
void eWidget::eraseBackground(gPainter *, const eRect &) {}
int eWidget::setProperty(const eString &, const eString &)
{
	return 0;
}

void eWidget::traceEnd(const char *type)
{
	if (!traced)
		call(this, std::string("~") + type + "()");
	traced = true;
}

void eWidget::setText(const eString &text)
{
	call(this, "setText(" + quoted(text) + ")");
}

void eWidget::cmove(const ePoint &position)
{
	call(this, "cmove" + pair(position.x, position.y));
}

void eWidget::cresize(const eSize &size)
{
	call(this, "cresize" + pair(size.width, size.height));
	// Differs from the desk host's: another origin, another size than requested.
	inner = eRect(ePoint(11, 33), eSize(size.width, size.height - number("lost", 0)));
}

void eWidget::move(const ePoint &position)
{
	call(this, "move" + pair(position.x, position.y));
}

void eWidget::resize(const eSize &size)
{
	call(this, "resize" + pair(size.width, size.height));
}

void eWidget::show()
{
	call(this, "show()");
	visible = true;
	willShow();
}

void eWidget::hide()
{
	call(this, "hide()");
	visible = false;
	willHide();
}

void eWidget::close(int value)
{
	if (ended)
		return;
	ended = true;
	result = value;
}

void eWidget::accept()
{
	call(this, "accept()");
	close(0);
}

void eWidget::reject()
{
	call(this, "reject()");
	close(-1);
}

void eWidget::setFocus(eWidget *child)
{
	nameOf(this); // numbers the window before the child
	call(this, "setFocus(" + nameOf(child) + ")");
	focus = child;
}

void eWidget::setShortcut(const eString &key)
{
	call(this, "setShortcut(" + quoted(key) + ")");
	shortcut = key;
}

/// Sends keys to the running window.
struct Remote
{
	static void press(eWidget &window, const std::string &key)
	{
		if (eMessageBox *box = dynamic_cast<eMessageBox *>(&window))
			answerBox(*box, key);
		else if (pressColour(window, key))
			return;
		else if (eListBoxBase *list = focused<eListBoxBase>(window))
			pressList(window, *list, key);
		else if (key == "exit")
			window.close(number("left", -1));
		else if (eButton *button = focused<eButton>(window))
			pressButton(*button, key);
	}

	/// Prints the entries of a window's lists.
	static void printEntries(eWidget &window)
	{
		for (Child child = window.children.begin(); child != window.children.end(); ++child)
			if (eListBoxBase *list = dynamic_cast<eListBoxBase *>(*child))
				for (Entry entry = list->lines.begin(); entry != list->lines.end(); ++entry)
					if (eListBoxEntryText *text = dynamic_cast<eListBoxEntryText *>(*entry))
						printEntry(*text);
	}

	static void freeKey(eListBoxEntry &entry)
	{
		if (eListBoxEntryText *text = dynamic_cast<eListBoxEntryText *>(&entry))
			delete static_cast<eString *>(text->key);
	}

private:
	typedef std::list<eWidget *>::iterator Child;
	typedef std::list<eListBoxEntry *>::iterator Entry;

	static void printEntry(const eListBoxEntryText &entry)
	{
		const eString *key = static_cast<const eString *>(entry.key);
		line("entry " + quoted(entry.text) + ", key " + (key ? quoted(*key) : "null") + ", help " +
		     quoted(entry.helptext) + ", attribute " + decimal(entry.attribute) + ", others " +
		     decimal(entry.keytype) + " " + decimal(entry.align) + " " + decimal(entry.precolour));
	}

	/// The focused widget if it is a T; without focus, the first T.
	template <class T> static T *focused(eWidget &window)
	{
		if (window.focus)
			return dynamic_cast<T *>(window.focus);
		for (Child child = window.children.begin(); child != window.children.end(); ++child)
			if ((*child)->canFocus)
				return dynamic_cast<T *>(*child);
		return NULL;
	}

	static void answerBox(eMessageBox &box, const std::string &key)
	{
		if (key == "right")
			box.highlighted = eMessageBox::answerNo;
		else if (key == "ok")
			box.close(box.highlighted);
		else if (key == "exit")
			box.close(-1);
	}

	static bool pressColour(eWidget &window, const std::string &key)
	{
		for (Child child = window.children.begin(); child != window.children.end(); ++child)
			if ((*child)->shortcut == key)
				if (eButton *button = dynamic_cast<eButton *>(*child)) {
					button->selected.emit();
					return true;
				}
		return false;
	}

	static void pressButton(eButton &button, const std::string &key)
	{
		if (key == "ok")
			button.selected.emit();
	}

	static void pressList(eWidget &window, eListBoxBase &list, const std::string &key)
	{
		const int count = static_cast<int>(list.lines.size());
		Entry entry = list.lines.begin();
		std::advance(entry, list.current);
		if (key == "down" && count)
			list.current = (list.current + 1) % count;
		else if (key == "ok" && count)
			list.SendSelected(*entry);
		else if (key == "exit") {
			list.SendSelected(NULL);
			window.close(number("left", -1));
		}
	}
};

// AddressSanitizer must leave objects on the stack, because the trace tells where they are.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options()
{
	return "detect_stack_use_after_return=0";
}

int eWidget::exec()
{
	call(this, "exec()");
	ended = false;
	takeConditions();
	if (given("verbose")) {
		const char here = 0;
		const long distance = reinterpret_cast<const char *>(this) - &here;
		line(distance > -1000000 && distance < 1000000 ? "it is on the stack" : "it is on the heap");
		Remote::printEntries(*this);
		compareProcess();
	}
	if (given("answer") && dynamic_cast<eMessageBox *>(this))
		close(number("answer", 0));
	while (!ended)
		Remote::press(*this, nextKey());
	call(this, "exec() = " + decimal(result));
	return result;
}

eDecoWidget::eDecoWidget(eWidget *of, int takefocus, const char *) : eWidget(of, takefocus), padding() {}
eDecoWidget::~eDecoWidget() {}
int eDecoWidget::eventFilter(const eWidgetEvent &)
{
	return 0;
}
int eDecoWidget::setProperty(const eString &, const eString &)
{
	return 0;
}
void eDecoWidget::loadDeco()
{
	call(this, "loadDeco()");
}

eLabel::eLabel(eWidget *of, int flags, int takefocus, const char *deco) : eDecoWidget(of, takefocus, deco)
{
	line(nameOf(this) + " = eLabel(" + nameOf(of) + ", " + decimal(flags) + ", " + decimal(takefocus) + ", " +
	     quoted(deco) + ")");
}
eLabel::~eLabel() {}
void eLabel::setShortcutPixmap(const eString &key)
{
	call(this, "setShortcutPixmap(" + quoted(key) + ")");
	pixmap = key;
}

eButton::eButton(eWidget *of, eLabel *description, int takefocus, const char *deco)
	: eLabel(of, 0, quietly(takefocus), deco), about(description)
{
	--muted;
	line(nameOf(this) + " = eButton(" + nameOf(of) + ", " + nameOf(description) + ", " + decimal(takefocus) +
	     ", " + quoted(deco) + ")");
}
eButton::~eButton() {}

eWindow::eWindow(int takefocus) : eWidget(NULL, takefocus), frame()
{
	line(nameOf(this) + " = eWindow(" + decimal(takefocus) + ")");
}
eWindow::~eWindow()
{
	traceEnd("eWindow");
}
void eWindow::willShow() {}
void eWindow::willHide() {}
void eWindow::recalcClientRect() {}
int eWindow::eventHandler(const eWidgetEvent &)
{
	return 0;
}
void eWindow::redrawWidget(gPainter *, const eRect &) {}
void eWindow::eraseBackground(gPainter *, const eRect &) {}

eMessageBox::eMessageBox(eString text, eString caption, int flags, int preset, int last)
	: eWindow(quietly(1)), offered(flags), highlighted(preset)
{
	--muted;
	line(nameOf(this) + " = eMessageBox(" + quoted(text) + ", " + quoted(caption) + ", " + decimal(flags) +
	     ", " + decimal(preset) + ", " + decimal(last) + ")");
}
eMessageBox::~eMessageBox()
{
	traceEnd("eMessageBox");
}

eListBoxBase::eListBoxBase(eWidget *of, const eWidget *description, int takefocus, int height,
                           const char *deco)
	: eDecoWidget(of, takefocus, deco), entryHeight(height), current(0)
{
	if (muted == 0)
		line(nameOf(this) + " = eListBoxBase(" + nameOf(of) + ", " + nameOf(description) + ", " +
		     decimal(takefocus) + ", " + decimal(height) + ", " + quoted(deco) + ")");
}

eListBoxBase::~eListBoxBase()
{
	++muted;
	// An entry's destructor removes it from the list. Its key is freed first: this host frees keys.
	for (; !lines.empty(); delete lines.front())
		Remote::freeKey(*lines.front());
	--muted;
}

void eListBoxBase::gotFocus() {}
void eListBoxBase::lostFocus() {}
void eListBoxBase::recalcClientRect() {}
int eListBoxBase::eventHandler(const eWidgetEvent &)
{
	return 0;
}
void eListBoxBase::redrawWidget(gPainter *, const eRect &) {}
int eListBoxBase::setProperty(const eString &, const eString &)
{
	return 0;
}

void eListBoxBase::setFlags(int flags)
{
	call(this, "setFlags(" + decimal(flags) + ")");
}

void eListBoxBase::append(eListBoxEntry *entry, bool makeCurrent, bool atTop)
{
	const std::string box = nameOf(this);
	line(box + ".append(" + nameOf(entry) + ", " + (makeCurrent ? "true" : "false") + ", " +
	     (atTop ? "true" : "false") + ")");
	lines.push_back(entry);
}

void eListBoxBase::remove(eListBoxEntry *entry, bool fromDestruction)
{
	call(this, "remove(" + nameOf(entry) + ", " + (fromDestruction ? "true" : "false") + ")");
	lines.remove(entry);
	numbers.erase(entry);
}

void eListBoxEntryText::redraw(gPainter *, const eRect &, gColor, gColor, gColor, gColor, int) {}

int eListBoxEntryText::getEntryHeight()
{
	const int size = number("fontsize", 20);
	const int height = size ? size : 20;
	line("eListBoxEntryText.getEntryHeight() = " + decimal(height));
	return height;
}

eSetupWindow::eSetupWindow(const char *title, int rows, int width)
	: eListBoxWindow<eListBoxEntryMenu>(quietly(rows))
{
	--muted;
	focus = &entries;
	line(nameOf(this) + " = eSetupWindow(" + quoted(title) + ", " + decimal(rows) + ", " + decimal(width) +
	     ")");
}
eSetupWindow::~eSetupWindow()
{
	traceEnd("eSetupWindow");
	// Its list is a member, destroyed before the window's other children.
}
int eSetupWindow::eventHandler(const eWidgetEvent &)
{
	return 0;
}

int main(int count, char **words)
{
	if (count != 4) {
		std::fprintf(stderr, "usage: vendor_host PLUGIN ROOT SCRIPT\n");
		return 2;
	}
	root = words[2];
	std::istringstream all(words[3]);
	for (std::string word; all >> word; script.push_back(word))
		if (word == "trace")
			++muted;
	setenv("PATH", (served("/bin") + ":/usr/bin:/bin").c_str(), 1);

	plugin = dlopen(words[1], RTLD_NOW | RTLD_LOCAL);
	if (!plugin) {
		std::fprintf(stderr, "vendor_host: %s\n", dlerror());
		return 1;
	}
	SigC::connecting = connected;
	int (*entry)();
	const void *const symbol = dlsym(plugin, "plugin_exec");
	std::memcpy(&entry, &symbol, sizeof entry); // C++98 cannot cast an object pointer to a function pointer
	do {
		takeConditions();
		numbers.clear();
		lastNumber = 0;
		processBefore = process();
		const int result = entry();
		compareProcess();
		std::fprintf(stderr, "plugin_exec returned %d\n", result);
		if (given("verbose"))
			line("plugin_exec() = " + decimal(result));
		if (script.empty() || script.front() != "again")
			return dlclose(plugin);
		script.pop_front();
	} while (true);
}

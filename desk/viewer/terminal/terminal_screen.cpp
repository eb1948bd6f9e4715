#include "terminal_screen.h"

#include "cell_canvas.h"
#include "desk_error.h"
#include "note_log.h"
#include "signals.h"
#include "terminal_colours.h"
#include "visible_text.h"

#include <glib.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <curses.h>
#include <term.h>
#undef lines // macros of these headers with common names

namespace desk
{
namespace
{

constexpr int neededColumns = 80;
constexpr int neededRows = 24;
constexpr int escapeDelay = 50; // milliseconds after which Esc does not begin another key
constexpr int logKey = KEY_F(9);

/// Parts of the help line; `key` marks a key's name.
const struct
{
	bool key;
	const char *text;
} help[] = {
	{true, "Arrows j k"}, {false, " move  "},    {true, "PgUp PgDn"}, {false, " page  "},
	{true, "Enter"},      {false, " ok  "},      {true, "Esc q"},     {false, " back  "},
	{true, "r g y b"},    {false, " colours  "}, {true, "F9"},        {false, " log"},
};

/// Sequences that terminals send, whatever their description says.
const struct
{
	const char *bytes;
	int key;
} commonKeys[] = {
	{"\033[A", KEY_UP},     {"\033OA", KEY_UP},     {"\033[B", KEY_DOWN},   {"\033OB", KEY_DOWN},
	{"\033[C", KEY_RIGHT},  {"\033OC", KEY_RIGHT},  {"\033[D", KEY_LEFT},   {"\033OD", KEY_LEFT},
	{"\033[H", KEY_HOME},   {"\033OH", KEY_HOME},   {"\033[1~", KEY_HOME},  {"\033[7~", KEY_HOME},
	{"\033[F", KEY_END},    {"\033OF", KEY_END},    {"\033[4~", KEY_END},   {"\033[8~", KEY_END},
	{"\033[5~", KEY_PPAGE}, {"\033[6~", KEY_NPAGE}, {"\033OM", KEY_ENTER},  {"\033OP", KEY_F(1)},
	{"\033OQ", KEY_F(2)},   {"\033OR", KEY_F(3)},   {"\033OS", KEY_F(4)},   {"\033[11~", KEY_F(1)},
	{"\033[12~", KEY_F(2)}, {"\033[13~", KEY_F(3)}, {"\033[14~", KEY_F(4)}, {"\033[[A", KEY_F(1)},
	{"\033[[B", KEY_F(2)},  {"\033[[C", KEY_F(3)},  {"\033[[D", KEY_F(4)},  {"\033[20~", KEY_F(9)},
};

const struct
{
	wint_t code;
	Key key;
} codes[] = {
	{KEY_UP, Key::up},        {KEY_DOWN, Key::down},      {KEY_LEFT, Key::left},  {KEY_RIGHT, Key::right},
	{KEY_PPAGE, Key::pageup}, {KEY_NPAGE, Key::pagedown}, {KEY_HOME, Key::home},  {KEY_END, Key::end},
	{KEY_ENTER, Key::ok},     {KEY_F(1), Key::red},       {KEY_F(2), Key::green}, {KEY_F(3), Key::yellow},
	{KEY_F(4), Key::blue},
};

std::optional<Key> keyOfCode(wint_t code)
{
	for (const auto &known : codes)
		if (known.code == code)
			return known.key;
	return std::nullopt;
}

std::optional<Key> keyOfCharacter(wint_t character)
{
	switch (character) {
	case '\r':
	case '\n':
		return Key::ok;
	case 033:
		return Key::exit;
	default:
		return character < 0x80 ? keyOfLetter(static_cast<char>(character)) : std::nullopt;
	}
}

// A string of the terminal's description; empty if missing.
std::string described(const char *name)
{
	static std::string out;
	out.clear();
	const char *string = tigetstr(name);
	if (string && string != reinterpret_cast<char *>(-1))
		tputs(string, 1, [](int c) {
			out += static_cast<char>(c);
			return c;
		});
	return out;
}

/// The glyph in wide characters of this locale; false if it does not fit `span` cells. In other character sets than
/// UTF-8, a non-ASCII byte may be a control.
bool localized(const std::string &glyph, int span, std::wstring &out)
{
	static const bool utf8 = std::string_view(nl_langinfo(CODESET)) == "UTF-8";
	out.clear();
	for (const char *at = glyph.c_str(); *at; at = g_utf8_next_char(at)) {
		const gunichar c = g_utf8_get_char(at);
		const wchar_t wide = static_cast<wchar_t>(c);
		if ((!utf8 && c > '~') || wcwidth(wide) != (out.empty() ? span : 0))
			return false;
		if (out.size() < CCHARW_MAX)
			out += wide;
	}
	return true;
}

const cchar_t *lineCharacter(Cell::Shape shape)
{
	switch (shape) {
	case Cell::Shape::horizontal:
		return WACS_HLINE;
	case Cell::Shape::vertical:
	case Cell::Shape::track:
		return WACS_VLINE;
	case Cell::Shape::topLeft:
		return WACS_ULCORNER;
	case Cell::Shape::topRight:
		return WACS_URCORNER;
	case Cell::Shape::bottomLeft:
		return WACS_LLCORNER;
	case Cell::Shape::bottomRight:
		return WACS_LRCORNER;
	default:
		return nullptr;
	}
}

bool isInForeground()
{
	const pid_t foreground = tcgetpgrp(STDIN_FILENO);
	return foreground < 0 || foreground == getpgrp();
}

/// The screen in a terminal, by curses; handles job control and resizing.
class TerminalScreen : public Screen
{
public:
	static std::unique_ptr<Screen> open();
	~TerminalScreen() override;

	Canvas *canvas() override { return &cells; }
	void present(const Rect &changed) override;
	int descriptor() const override { return hungUp ? -1 : STDIN_FILENO; }
	void readInput() override;
	void handleSignal(int signal) override;
	std::optional<Input> take() override;
	bool hasKeys() const override { return !hungUp || !keys.empty(); }

private:
	TerminalScreen() = default;

	bool start(const char *name);
	bool fits() const { return LINES >= neededRows && COLS >= neededColumns; }
	void draw();
	void redraw();
	void repair();
	void drawCell(int row, int column, const Cell &cell, int span, int &textColour);
	void drawHelp(int row, int column);
	void drawLog();
	int pair(int text, int ground);
	std::optional<Key> keyOf(int kind, wint_t code);
	bool skipSequence();

	FILE *input = nullptr, *output = nullptr;
	SCREEN *curses = nullptr;
	ColourDepth depth = ColourDepth::none;
	std::map<std::pair<int, int>, int> pairs;
	CellCanvas cells;
	termios modes = {}; // of the terminal before the start
	std::deque<Input> keys;
	bool hungUp = false;
	bool showsLog = false;
	bool away = false; ///< stopped, with the terminal restored
};

std::unique_ptr<Screen> TerminalScreen::open()
{
	const auto failure = [](const std::string &why) {
		return Error("cannot use the terminal: " + why + ", or use --screen none");
	};
	if (!isatty(STDIN_FILENO))
		throw failure("standard input is not one; start it from a terminal");
	if (!isatty(STDOUT_FILENO))
		throw failure("standard output is not one; leave out the redirection");
	const char *name = getenv("TERM");
	if (!name || !*name)
		throw failure("TERM is not set; set it to the terminal's name");
	const std::string shown = "TERM=" + visibleText(name);
	int status = 0;
	if (setupterm(name, STDOUT_FILENO, &status) != OK)
		throw failure(status < 0 ? "there are no terminal descriptions here; install ncurses-base"
		                         : shown + " is not known here; set TERM to what the terminal is");
	if (described("cup").empty())
		throw failure(shown + " cannot move the cursor; set TERM to what the terminal is");

	std::unique_ptr<TerminalScreen> screen(new TerminalScreen);
	if (!screen->start(name))
		throw failure(shown + " does not work; set TERM to what the terminal is");
	return screen;
}

bool TerminalScreen::start(const char *name)
{
	depth = terminalColours();
	del_curterm(cur_term); // curses makes its own
	input = fdopen(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3), "r");
	output = fdopen(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3), "w");
	tcgetattr(STDIN_FILENO, &modes);
	winsize size = {};
	if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
		use_env(FALSE); // LINES and COLUMNS may be outdated
		use_tioctl(TRUE);
	}
	if (input && output) {
		const EndsAtOnce stopped; // newterm() stops a background process
		curses = newterm(name, output, input);
	}
	if (!curses)
		return false;

	if (depth != ColourDepth::none) {
		start_color();
		use_default_colors();
	}
	cbreak();
	noecho();
	nonl();
	intrflush(stdscr, FALSE);
	keypad(stdscr, TRUE);
	nodelay(stdscr, TRUE);
	leaveok(stdscr, TRUE);
	set_escdelay(escapeDelay);
	for (const auto &key : commonKeys)
		if (key_defined(key.bytes) == 0)
			define_key(key.bytes, key.key);
	curs_set(0);
	return true;
}

TerminalScreen::~TerminalScreen()
{
	if (curses) {
		if (!away)
			endwin();
		delscreen(curses);
		if (isInForeground()) // commands may have changed the modes
			tcsetattr(STDIN_FILENO, TCSANOW, &modes);
	}
	for (FILE *stream : {input, output})
		if (stream)
			fclose(stream);
}

void TerminalScreen::present(const Rect &)
{
	if (away)
		return;
	draw();
	refresh();
}

void TerminalScreen::redraw()
{
	draw();
	clearok(curscr, TRUE);
	refresh();
}

void TerminalScreen::draw()
{
	erase();
	if (!fits()) {
		mvprintw(0, 0, "The terminal is %d x %d.\nThis screen needs %d x %d.\nEnlarge, or press q.", COLS,
		         LINES, neededColumns, neededRows);
		return;
	}
	if (showsLog) {
		drawLog();
		return;
	}
	const std::vector<int> rows = cells.rowsWithin(LINES - 1, LINES);
	const int count = static_cast<int>(rows.size());
	const int top = std::max(0, (LINES - 1 - count) / 2);
	const int first = cells.firstColumnWithin(COLS);
	const int end = std::min(first + COLS, cellColumns);
	const int left = std::max(0, (COLS - cellColumns) / 2);
	for (int row = 0; row < count; ++row) {
		int textColour = depth == ColourDepth::none ? 0 : colourNumber({255, 255, 255}, depth);
		for (int column = first; column < end; ++column) {
			const Cell &cell = cells.at(rows[static_cast<size_t>(row)], column);
			if (cell.glyph.empty())
				continue;
			const bool wide =
				column + 1 < end && cells.at(rows[static_cast<size_t>(row)], column + 1).glyph.empty();
			drawCell(top + row, left + column - first, cell, wide ? 2 : 1, textColour);
		}
	}
	if (top + count < LINES)
		drawHelp(top + count, left);
}

// `textColour` is the previous cell's. Blanks keep it, to avoid sending a change of colour.
void TerminalScreen::drawCell(int row, int column, const Cell &cell, int span, int &textColour)
{
	attr_t attributes = cell.bold ? A_BOLD : A_NORMAL;
	int colours = 0;
	bool distinct = false; // whether its colours differ from its surroundings
	if (depth != ColourDepth::none) {
		const int ground = colourNumber(cell.ground, depth);
		distinct = ground != colourNumber(cell.below, depth);
		if (cell.glyph != " " || cell.shape != Cell::Shape::none || !distinct)
			textColour = legibleColour(cell.text, cell.ground, depth);
		if (depth == ColourDepth::eight && textColour == COLOR_BLACK)
			attributes &= ~A_BOLD; // bold black looks grey
		colours = pair(textColour, ground);
	}
	if (!distinct && cell.current)
		attributes |= A_REVERSE;
	if (!distinct && cell.dim)
		attributes |= A_UNDERLINE;

	std::wstring glyph;
	bool narrow = false; // a replacement for a wide character leaves a blank beside it
	const bool bar = cell.shape == Cell::Shape::track || cell.shape == Cell::Shape::thumb;
	if (bar && depth == ColourDepth::indexed)
		glyph = L" "; // line characters may show the text's colour
	else if (const cchar_t *line = lineCharacter(cell.shape)) {
		wchar_t text[CCHARW_MAX + 1] = {};
		attr_t kind = 0;
		short ignored = 0;
		getcchar(line, text, &kind, &ignored, nullptr);
		glyph = text;
		attributes |= kind;
	} else if (cell.shape == Cell::Shape::thumb) {
		glyph = L" ";
		attributes |= A_REVERSE;
	} else if (!distinct && cell.end && cell.glyph == " ")
		glyph = cell.end == '[' ? L"[" : L"]";
	else if (!localized(cell.glyph, span, glyph)) {
		glyph = L"?";
		narrow = span == 2;
	}
	cchar_t character;
	setcchar(&character, glyph.c_str(), attributes, 0, &colours);
	mvadd_wch(row, column, &character);
	if (narrow) {
		setcchar(&character, L" ", attributes, 0, &colours);
		mvadd_wch(row, column + 1, &character);
	}
}

int TerminalScreen::pair(int text, int ground)
{
	const auto known = pairs.find({text, ground});
	if (known != pairs.end())
		return known->second;
	const int number = static_cast<int>(pairs.size()) + 1;
	if (number >= COLOR_PAIRS || init_extended_pair(number, text, ground) == ERR)
		return 0;
	return pairs[{text, ground}] = number;
}

// Adds a line of visible text that fits.
void addText(int row, int column, const std::string &line)
{
	std::wstring wide, glyph;
	for (const char *at = line.c_str(), *next = at; *at; at = next) {
		next = g_utf8_next_char(at);
		const std::string character(at, next);
		wide += localized(character, textColumns(character), glyph) ? glyph : L"?";
	}
	mvaddwstr(row, column, wide.c_str());
}

void TerminalScreen::drawHelp(int row, int column)
{
	move(row, column + 1);
	for (const auto &word : help) {
		attrset(word.key ? A_BOLD : A_NORMAL);
		addstr(word.text);
	}
	attrset(A_NORMAL);
}

// Shows the last debug lines and notes that fit.
void TerminalScreen::drawLog()
{
	const std::vector<std::string> lines = NoteLog::get().lastRows(static_cast<size_t>(LINES - 1), COLS);
	int row = 0;
	for (const std::string &line : lines)
		addText(row++, 0, line);
	attrset(A_BOLD);
	mvaddstr(LINES - 1, 1,
	         lines.empty() ? "There are no debug lines yet. Any key goes back."
	                       : "The last debug lines. Any key goes back.");
	attrset(A_NORMAL);
}

void TerminalScreen::readInput()
{
	for (;;) {
		wint_t code = 0;
		const int kind = get_wch(&code);
		if (kind == ERR)
			break;
		if (kind == KEY_CODE_YES && code == KEY_RESIZE)
			continue; // handled already
		if (const std::optional<Key> key = keyOf(kind, code); key && (fits() || *key == Key::exit))
			keys.push_back({*key});
	}
	// curses interrupts a frame when keys arrive; finish it now.
	refresh();
	pollfd end = {STDIN_FILENO, POLLIN, 0};
	int waiting = 0;
	if (poll(&end, 1, 0) > 0 && (ioctl(STDIN_FILENO, FIONREAD, &waiting) != 0 || waiting == 0))
		hungUp = true;
}

std::optional<Input> TerminalScreen::take()
{
	if (keys.empty())
		return std::nullopt;
	const Input key = keys.front();
	keys.pop_front();
	return key;
}

void TerminalScreen::handleSignal(int signal)
{
	if (signal == SIGTSTP) {
		endwin();
		away = true;
		raise(SIGSTOP); // until SIGCONT
	} else if (signal == SIGCONT && !isInForeground())
		raise(SIGSTOP); // continued in the background, without the terminal
	else if (signal == SIGCONT || !away) {
		away = false;
		repair();
	}
}

// Redraws after other programs used the terminal, or after a change of size.
void TerminalScreen::repair()
{
	endwin();
	winsize size = {};
	if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0)
		resizeterm(size.ws_row, size.ws_col);
	redraw();
}

// The remote control's key for the input. Handles the screen's own keys.
std::optional<Key> TerminalScreen::keyOf(int kind, wint_t code)
{
	if (showsLog || (kind == KEY_CODE_YES && code == logKey)) {
		showsLog = !showsLog;
		keys.push_back({OwnKey()});
		redraw();
		if (code == 033)
			skipSequence();
		return std::nullopt;
	}
	if (kind == KEY_CODE_YES)
		return keyOfCode(code);
	if (code == 'L' - 64)
		redraw();
	// An unknown escape sequence is not Esc.
	if (code == 033 && skipSequence())
		return std::nullopt;
	return keyOfCharacter(code);
}

// Skips an escape sequence after its Esc; false if there is none.
bool TerminalScreen::skipSequence()
{
	wint_t code = 0;
	const int kind = get_wch(&code);
	if (kind == OK && (code == '[' || code == 'O')) {
		while (get_wch(&code) == OK && (code < 0x40 || code > 0x7E)) {
		}
		return true;
	}
	if (kind == OK)
		unget_wch(static_cast<wchar_t>(code));
	else if (kind == KEY_CODE_YES)
		ungetch(static_cast<int>(code));
	return false;
}

} // namespace

std::unique_ptr<Screen> makeTerminalScreen()
{
	return TerminalScreen::open();
}

} // namespace desk

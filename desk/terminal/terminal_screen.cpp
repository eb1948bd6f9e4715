#include "terminal_screen.h"

#include "cell_canvas.h"
#include "terminal_colours.h"
#include "terminal_hold.h"
#include "visible_text.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

#include <curses.h>
#include <term.h>

namespace desk
{
namespace
{

constexpr int helpRows = 1;
constexpr int neededColumns = cellColumns;
constexpr int neededRows = cellRows + helpRows;

constexpr int escapeDelay = 50; // milliseconds after which an Esc is no start of another key

/// Words of the help line; a key's name when `key`.
const struct
{
	bool key;
	const char *text;
} help[] = {
	{true, "Arrows j k"},    {false, " move  "}, {true, "PgUp PgDn Home End"},
	{false, " page  "},      {true, "Enter"},    {false, " ok  "},
	{true, "Esc q"},         {false, " back  "}, {true, "F1-F4 r g y b"},
	{false, " colour keys"},
};

/// What terminals send for a key, whatever their description says.
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
	{"\033[[B", KEY_F(2)},  {"\033[[C", KEY_F(3)},  {"\033[[D", KEY_F(4)},
};

std::optional<Key> keyOfCode(wint_t code)
{
	switch (code) {
	case KEY_UP:
		return Key::up;
	case KEY_DOWN:
		return Key::down;
	case KEY_LEFT:
		return Key::left;
	case KEY_RIGHT:
		return Key::right;
	case KEY_PPAGE:
		return Key::pageup;
	case KEY_NPAGE:
		return Key::pagedown;
	case KEY_HOME:
		return Key::home;
	case KEY_END:
		return Key::end;
	case KEY_ENTER:
		return Key::ok;
	case KEY_F(1):
		return Key::red;
	case KEY_F(2):
		return Key::green;
	case KEY_F(3):
		return Key::yellow;
	case KEY_F(4):
		return Key::blue;
	default:
		return std::nullopt;
	}
}

std::optional<Key> keyOfCharacter(wint_t character)
{
	if (character >= '0' && character <= '9')
		return static_cast<Key>(static_cast<int>(Key::digit0) + static_cast<int>(character - '0'));
	switch (character) {
	case 'k':
		return Key::up;
	case 'j':
		return Key::down;
	case 'h':
		return Key::left;
	case 'l':
		return Key::right;
	case '\r':
	case '\n':
		return Key::ok;
	case 033:
	case 'q':
		return Key::exit;
	case 'r':
		return Key::red;
	case 'g':
		return Key::green;
	case 'y':
		return Key::yellow;
	case 'b':
		return Key::blue;
	default:
		return std::nullopt;
	}
}

// A string of the terminal's description, as it is to be sent; empty when there is none.
std::string described(const char *name)
{
	static std::string out;
	const char *string = tigetstr(name);
	if (!string || string == reinterpret_cast<char *>(-1))
		return {};
	out.clear();
	tputs(string, 1, [](int c) {
		out += static_cast<char>(c);
		return c;
	});
	return out;
}

std::string leavingFrom(int row)
{
	static std::string out;
	out.clear();
	const char *move = tigetstr("cup");
	tputs(tparm(move, row, 0, 0, 0, 0, 0, 0, 0, 0), 1, [](int c) {
		out += static_cast<char>(c);
		return c;
	});
	const std::string back = described("rmcup");
	return described("op") + described("sgr0") + (back.empty() ? described("clear") : out + described("el")) +
	       described("cnorm") + described("rmkx") + back;
}

std::string entering()
{
	return described("smcup") + described("smkx") + described("civis");
}

/// A glyph in the wide characters of this locale; false when it cannot be shown in `span` cells.
bool localized(std::string_view glyph, int span, std::wstring &out)
{
	out.clear();
	for (size_t i = 0; i < glyph.size();) {
		const unsigned char lead = static_cast<unsigned char>(glyph[i++]);
		uint32_t c = lead < 0x80   ? lead
		             : lead < 0xE0 ? lead & 0x1Fu
		             : lead < 0xF0 ? lead & 0x0Fu
		                           : lead & 0x07u;
		while (i < glyph.size() && (static_cast<unsigned char>(glyph[i]) & 0xC0) == 0x80)
			c = c << 6 | (static_cast<unsigned char>(glyph[i++]) & 0x3Fu);
		const wchar_t wide = static_cast<wchar_t>(c);
		char bytes[MB_LEN_MAX];
		mbstate_t state = {};
		const bool known = wcrtomb(bytes, wide, &state) != static_cast<size_t>(-1);
		const int width = known ? wcwidth(wide) : -1;
		if (out.empty() ? width != span : width != 0)
			return false;
		if (out.size() < CCHARW_MAX)
			out += wide;
	}
	return true;
}

const cchar_t *ruleCharacter(Cell::Rule rule)
{
	switch (rule) {
	case Cell::Rule::horizontal:
		return WACS_HLINE;
	case Cell::Rule::vertical:
		return WACS_VLINE;
	case Cell::Rule::topLeft:
		return WACS_ULCORNER;
	case Cell::Rule::topRight:
		return WACS_URCORNER;
	case Cell::Rule::bottomLeft:
		return WACS_LLCORNER;
	case Cell::Rule::bottomRight:
		return WACS_LRCORNER;
	default:
		return nullptr;
	}
}

/// The screens in a terminal, by curses. The terminal is 90 x 30 at least: the cells and a line of help.
class TerminalScreen : public Screen
{
public:
	static std::unique_ptr<Screen> open(std::string &error);
	~TerminalScreen() override;

	Canvas *canvas() override { return &cells; }
	void present(const Rect &changed) override;
	std::optional<Key> waitKey() override;
	void note(const std::string &line) override;
	void wake() override { hold.wake(); }
	bool ownsTerminal() const override { return true; }

private:
	TerminalScreen() : hold(entering(), leavingFrom(std::max(0, tigetnum("lines") - 1))) {}

	bool start();
	bool fits() const { return LINES >= neededRows && COLS >= neededColumns; }
	void fitSize();
	void redraw();
	void draw();
	void drawCell(int row, int column, const Cell &cell, int span, int &textColour);
	void drawHelp(int row, int column);
	void drawTooSmall();
	int pair(int text, int ground);
	std::optional<Key> readKey(bool &nothing);
	void skipSequence();

	TerminalHold hold;
	CellCanvas cells;
	std::vector<Cell> frame;
	SCREEN *curses = nullptr;
	ColourDepth depth = ColourDepth::none;
	std::map<std::pair<int, int>, int> pairs;
	bool closed = false;
};

std::unique_ptr<Screen> TerminalScreen::open(std::string &error)
{
	const auto refuse = [&](const std::string &why) {
		error = "cannot use the terminal: " + why + ", or use --screen none";
		return nullptr;
	};
	if (!isatty(STDIN_FILENO))
		return refuse("standard input is not one; start it from a terminal");
	if (!isatty(STDOUT_FILENO))
		return refuse("standard output is not one; leave out the redirection");
	const char *name = getenv("TERM");
	if (!name || !*name)
		return refuse("TERM is not set; set it to the terminal's name");
	const std::string shown = "TERM=" + visibleText(name);
	int status = 0;
	if (setupterm(name, STDOUT_FILENO, &status) != OK)
		return refuse(status < 0 ? "there are no terminal descriptions here; install ncurses-base"
		                         : shown + " is not known here; set TERM to what the terminal is");
	const char *move = tigetstr("cup");
	if (!move || move == reinterpret_cast<char *>(-1))
		return refuse(shown + " cannot move the cursor; set TERM to what the terminal is");

	std::unique_ptr<TerminalScreen> screen(new TerminalScreen);
	if (!screen->start()) {
		screen.reset();
		return refuse(shown + " does not work; set TERM to what the terminal is");
	}
	return screen;
}

bool TerminalScreen::start()
{
	const std::string name = getenv("TERM");
	TERMINAL *const asked = cur_term;
	depth = terminalColours();
	if (depth == ColourDepth::direct && !describesDirectColours()) {
		const char *folder = getenv("TERMINFO");
		const std::string before = folder ? folder : "";
		setenv("TERMINFO", withDirectColours(name).c_str(), 1);
		curses = newterm(name.c_str(), stdout, stdin);
		// Commands are to find the terminal as it was.
		if (folder)
			setenv("TERMINFO", before.c_str(), 1);
		else
			unsetenv("TERMINFO");
		if (curses && tigetnum("colors") < 1 << 24)
			depth = tigetnum("colors") >= 256 ? ColourDepth::indexed : ColourDepth::eight;
	} else
		curses = newterm(name.c_str(), stdout, stdin);
	if (!curses)
		return false;
	del_curterm(asked); // curses has its own

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
	hold.modeIsSet();
	fitSize();
	return true;
}

TerminalScreen::~TerminalScreen()
{
	// Not endwin(): the terminal is given back in one way only, whoever ends the program.
	if (curses)
		delscreen(curses);
}

void TerminalScreen::fitSize()
{
	winsize size = {};
	if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0)
		resizeterm(size.ws_row, size.ws_col);
	hold.setLeave(leavingFrom(LINES - 1));
}

void TerminalScreen::present(const Rect &)
{
	frame = cells.cells();
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
		drawTooSmall();
		return;
	}
	if (frame.empty())
		return;
	const int top = (LINES - neededRows) / 2;
	const int left = (COLS - neededColumns) / 2;
	for (int row = 0; row < cellRows; ++row) {
		int textColour = depth == ColourDepth::none ? 0 : colourNumber({255, 255, 255}, depth);
		for (int column = 0; column < cellColumns; ++column) {
			const size_t i = static_cast<size_t>(row * cellColumns + column);
			if (frame[i].glyph.empty())
				continue;
			const bool wide = column + 1 < cellColumns && frame[i + 1].glyph.empty();
			drawCell(top + row, left + column, frame[i], wide ? 2 : 1, textColour);
		}
	}
	drawHelp(top + cellRows, left);
}

// `textColour` is that of the cell before. Blanks keep it, so that no change of colours is sent for them.
void TerminalScreen::drawCell(int row, int column, const Cell &cell, int span, int &textColour)
{
	attr_t attributes = cell.bold ? A_BOLD : A_NORMAL;
	const bool coarse =
		depth == ColourDepth::none || depth == ColourDepth::eight || depth == ColourDepth::sixteen;
	if (cell.dim && coarse)
		attributes |= A_DIM;
	int colours = 0;
	bool told = false; // by its colours, that it is the current one
	if (depth != ColourDepth::none) {
		const Color shown = depth == ColourDepth::direct ? cell.ground : cell.plain;
		const int ground = colourNumber(shown, depth);
		told = colourNumber(cell.plain, depth) != colourNumber(cell.below, depth);
		const bool blank = cell.glyph == " " && cell.rule == Cell::Rule::none && cell.bar == Cell::Bar::none;
		if (!blank || (cell.current && !told))
			textColour = legibleColour(cell.text, shown, depth);
		colours = pair(textColour, ground);
		if (coarse && textColour == 0)
			attributes &= ~A_BOLD; // which makes a grey of black
	}
	if (cell.current && !told)
		attributes |= A_REVERSE;

	std::wstring glyph;
	const auto drawn = [&](const cchar_t *line) {
		wchar_t text[CCHARW_MAX + 1] = {};
		attr_t kind = 0;
		short ignored = 0;
		getcchar(line, text, &kind, &ignored, nullptr);
		glyph = text;
		attributes |= kind;
	};
	bool half = false; // a mark in place of a wide character leaves a blank beside it
	if (const cchar_t *rule = ruleCharacter(cell.rule))
		drawn(rule);
	else if (cell.bar != Cell::Bar::none && coarse) {
		// Its two colours may have become one.
		colours = depth == ColourDepth::none ? 0 : pair(COLOR_WHITE, COLOR_BLACK);
		if (cell.bar == Cell::Bar::track)
			drawn(WACS_VLINE);
		else {
			glyph = L" ";
			attributes |= A_REVERSE;
		}
	} else if (!localized(cell.glyph, span, glyph)) {
		glyph = L"?";
		half = span == 2;
	}
	cchar_t character;
	setcchar(&character, glyph.c_str(), attributes, 0, &colours);
	mvadd_wch(row, column, &character);
	if (half) {
		setcchar(&character, L" ", attributes, 0, &colours);
		mvadd_wch(row, column + 1, &character);
	}
}

// The pair of these colours; -1 is the terminal's own.
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

void TerminalScreen::drawHelp(int row, int column)
{
	move(row, column + 1);
	for (const auto &word : help) {
		attrset(word.key ? A_BOLD : A_NORMAL);
		addstr(word.text);
	}
	attrset(A_NORMAL);
}

void TerminalScreen::drawTooSmall()
{
	const std::string text = "The terminal is " + std::to_string(COLS) + " x " + std::to_string(LINES) +
	                         "; this screen needs " + std::to_string(neededColumns) + " x " +
	                         std::to_string(neededRows) + ". Enlarge it, or press q to leave.";
	// Broken at blanks, for a terminal that is really small.
	int row = 0, column = 0;
	for (size_t start = 0; start < text.size() && row < LINES;) {
		const size_t end = std::min(text.find(' ', start), text.size());
		const int length = static_cast<int>(end - start);
		if (column > 0 && column + length > COLS) {
			++row;
			column = 0;
		}
		mvaddnstr(row, column, text.c_str() + start, std::min(length, COLS - column));
		column += length + 1;
		start = end + 1;
	}
}

std::optional<Key> TerminalScreen::waitKey()
{
	while (!closed) {
		bool nothing = false;
		const std::optional<Key> key = readKey(nothing);
		if (key && (fits() || *key == Key::exit))
			return key;
		if (!nothing)
			continue;
		// A frame may have been left half sent because keys were waiting.
		refresh();
		switch (hold.wait()) {
		case TerminalHold::Wake::input:
			break;
		case TerminalHold::Wake::resized:
		case TerminalHold::Wake::continued:
			fitSize();
			redraw();
			break;
		case TerminalHold::Wake::closed:
			closed = true;
			break;
		case TerminalHold::Wake::woken:
			return std::nullopt;
		}
	}
	return std::nullopt;
}

// The next key that has been typed; `nothing` when there is none.
std::optional<Key> TerminalScreen::readKey(bool &nothing)
{
	wint_t code = 0;
	const int kind = get_wch(&code);
	nothing = kind == ERR;
	if (kind == ERR)
		return std::nullopt;
	if (kind == KEY_CODE_YES)
		return keyOfCode(code);
	if (code == 'L' - 64) {
		redraw();
		return std::nullopt;
	}
	if (code == 033) {
		// The start of a key that nobody knows is no Esc.
		wint_t next = 0;
		const int more = get_wch(&next);
		if (more == OK && (next == '[' || next == 'O')) {
			skipSequence();
			return std::nullopt;
		}
		if (more == OK)
			unget_wch(static_cast<wchar_t>(next));
		else if (more == KEY_CODE_YES)
			ungetch(static_cast<int>(next));
	}
	return keyOfCharacter(code);
}

void TerminalScreen::skipSequence()
{
	wint_t code = 0;
	while (get_wch(&code) == OK)
		if (code >= 0x40 && code <= 0x7E)
			return;
}

void TerminalScreen::note(const std::string &line)
{
	// What does not go to the terminal cannot spoil it.
	if (isatty(STDERR_FILENO))
		hold.keep(visibleText(line));
	else
		Screen::note(line);
}

} // namespace

std::unique_ptr<Screen> makeTerminalScreen(std::string &error)
{
	return TerminalScreen::open(error);
}

} // namespace desk

// Messages between the halves: decoding restores what was encoded, and rejects anything else.

#include "channel.h"
#include "message.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <functional>
#include <random>

namespace wire_test
{

using namespace desk;

DisplayList someFrame()
{
	DisplayList frame;
	frame.fill(wholeScreen, {{1, 2, 3}, {4, 5, 6}, 7, Part::thumb});
	frame.window({10, 10, 300, 200}, {14, 40, 292, 166}, "a title \xff\x01",
	             {{1, 1, 1}, {2, 2, 2}, {3, 3, 3}, {4, 4, 4}, {255, 254, 253}, 8});
	frame.pushClip({14, 40, 292, 166});
	TextStyle style;
	style.face = Face::prose;
	style.align = Align::end;
	style.bold = style.whole = true;
	style.rowHeight = 45;
	style.emphasis = Emphasis::current;
	style.color = {9, 8, 7};
	frame.text({-5, 50, 290, 45}, "text \xc3\xa4", style);
	frame.keySymbol({20, 100, 24, 20}, Key::blue, {75, 137, 248});
	frame.popClip();
	return frame;
}

/// What a frame draws, as text lines.
struct Drawn : Canvas
{
	std::string calls;

	void put(const Rect &r)
	{
		for (const int number : {r.x, r.y, r.w, r.h})
			calls += ' ' + std::to_string(number);
	}
	void put(Color c) { calls += " #" + std::to_string(c.r << 16 | c.g << 8 | c.b); }
	bool move(const Rect &area, int down) override
	{
		calls += "\nmove";
		put(area);
		calls += " by " + std::to_string(down);
		return true;
	}
	void pushClip(const Rect &area) override
	{
		calls += "\nclip";
		put(area);
	}
	void popClip() override { calls += "\npop"; }
	void fill(const Rect &area, const Fill &fill) override
	{
		calls += "\nfill";
		put(area);
		put(fill.top);
		put(fill.bottom);
		calls += ' ' + std::to_string(fill.radius) + ' ' + std::to_string(static_cast<int>(fill.part));
	}
	void window(const Rect &outer, const Rect &client, std::string_view title,
	            const WindowStyle &style) override
	{
		calls += "\nframe";
		put(outer);
		put(client);
		calls.append(" ").append(title);
		for (const Color c : {style.border, style.titleTop, style.titleBottom, style.titleText, style.client})
			put(c);
		calls += ' ' + std::to_string(style.radius);
	}
	void text(const Rect &area, std::string_view line, const TextStyle &style) override
	{
		calls += "\ntext";
		put(area);
		calls.append(" ").append(line);
		put(style.color);
		for (const int number :
		     {static_cast<int>(style.face), style.rowHeight, int{style.bold}, static_cast<int>(style.align),
		      static_cast<int>(style.emphasis), int{style.whole}})
			calls += ' ' + std::to_string(number);
	}
	void keySymbol(const Rect &area, Key key, Color color) override
	{
		calls += "\nkey " + std::to_string(static_cast<int>(key));
		put(area);
		put(color);
	}
};

std::string drawn(const DisplayList &list)
{
	Drawn to;
	list.draw(to, wholeScreen);
	return to.calls;
}

template <class Kind> Kind back(const ToViewer &message)
{
	const auto came = decodeToViewer(encode(message));
	EXPECT_TRUE(came && std::holds_alternative<Kind>(*came));
	return came && std::holds_alternative<Kind>(*came) ? std::get<Kind>(*came) : Kind();
}

TEST(Wire, brings_a_frame_as_it_was)
{
	const DisplayList frame = someFrame();
	Frame message;
	message.edit = frame.editOf(DisplayList());
	message.waits = true;
	message.question = 3;
	message.windows = R"([{"title":"one","rows":["one","two"]}])";
	const Frame came = back<Frame>(message);
	EXPECT_TRUE(came.waits);
	EXPECT_EQ(came.question, 3u);
	EXPECT_EQ(came.windows, message.windows);
	DisplayList list;
	EXPECT_EQ(list.apply(came.edit), wholeScreen);
	EXPECT_EQ(drawn(list), drawn(frame));
	EXPECT_NE(drawn(frame).find("\nkey 13"), std::string::npos);
}

TEST(Wire, brings_a_description_only_when_it_is_one)
{
	Frame message;
	for (const char *windows : {"[", "[]]", "\"\xff\"", "{}\n{}"}) {
		message.windows = windows;
		EXPECT_FALSE(decodeToViewer(encode(message))) << windows;
	}
}

TEST(Wire, brings_only_what_has_changed_of_a_frame)
{
	const DisplayList before = someFrame();
	DisplayList after;
	after.fill(wholeScreen, {{1, 2, 3}, {4, 5, 6}, 7, Part::thumb});
	after.fill({50, 60, 10, 10}, Fill::plain({1, 1, 1}));
	const DisplayList::Edit edit = after.editOf(before);
	EXPECT_EQ(edit.front, 1u);
	EXPECT_EQ(edit.items.size(), 1u);
	DisplayList list = before;
	const auto changes = list.apply(edit);
	ASSERT_TRUE(changes);
	EXPECT_EQ(drawn(list), drawn(after));
	EXPECT_EQ(list.apply(after.editOf(after)), Rect());
	EXPECT_FALSE(list.apply({3, 0, {}})) << "it has not so many";
	EXPECT_FALSE(list.apply({1, 2, {}}));
	EXPECT_FALSE(list.apply({SIZE_MAX, SIZE_MAX, {}}));
}

using Drawing = std::function<void(DisplayList &)>;

/// Five lines of a long list, with other items below and above them.
DisplayList fiveLines(int first, const Drawing &below = {}, const Drawing &above = {})
{
	DisplayList list;
	list.window({10, 10, 300, 200}, {14, 40, 292, 166}, "a list", {});
	if (below)
		below(list);
	list.pushClip({20, 50, 270, 100});
	for (int i = 0; i < 5; ++i)
		list.text({20, 50 + 20 * i, 250, 20}, "line " + std::to_string(first + i), {});
	list.popClip();
	list.fill({280, 50 + first, 10, 20}, Fill::plain({1, 1, 1}));
	if (above)
		above(list);
	return list;
}

/// The drawing operations when one list becomes the other.
std::string changes(DisplayList before, const DisplayList &after)
{
	before.apply(after.editOf(before));
	Drawn to;
	before.drawChanges(to);
	return to.calls;
}

TEST(Wire, moves_lines_that_scroll)
{
	const std::string up = changes(fiveLines(1), fiveLines(2)), down = changes(fiveLines(2), fiveLines(1));
	EXPECT_EQ(up.rfind("\nmove 20 50 250 80 by -20\n", 0), 0u) << up;
	EXPECT_EQ(up.find("line 5"), std::string::npos) << up;
	EXPECT_NE(up.find("line 6"), std::string::npos) << up;
	EXPECT_NE(up.find("fill 280 52 10 20"), std::string::npos) << up;
	EXPECT_EQ(down.rfind("\nmove 20 70 250 80 by 20\n", 0), 0u) << down;
	EXPECT_NE(changes(fiveLines(1), fiveLines(4)).find("\nmove 20 50 250 40 by -60\n"), std::string::npos);
}

TEST(Wire, moves_nothing_that_would_take_something_else_along)
{
	const Drawing others[] = {
		[](DisplayList &list) {
			list.fill({20, 50, 270, 100}, {{1, 2, 3}, {4, 5, 6}});
		},
		[](DisplayList &list) {
			list.fill({20, 90, 270, 100}, Fill::plain({1, 2, 3}));
		},
		[](DisplayList &list) {
			list.fill({20, 50, 250, 100}, Fill::plain({1, 2, 3}, 8));
		},
		[](DisplayList &list) {
			list.keySymbol({100, 90, 20, 20}, Key::red, {});
		},
	};
	for (const Drawing &other : others) {
		const std::string above = changes(fiveLines(1, {}, other), fiveLines(2, {}, other));
		const std::string below = changes(fiveLines(1, other), fiveLines(2, other));
		EXPECT_EQ(above.find("\nmove"), std::string::npos) << above;
		EXPECT_EQ(below.find("\nmove"), std::string::npos) << below;
	}
	const auto plain = [](DisplayList &list) { list.fill({20, 50, 270, 100}, Fill::plain({1, 2, 3})); };
	EXPECT_NE(changes(fiveLines(1, plain), fiveLines(2, plain)).find("\nmove"), std::string::npos);
	EXPECT_EQ(changes(fiveLines(1, {}, plain), fiveLines(2, {}, plain)).find("\nmove"), std::string::npos);
}

TEST(Wire, brings_every_message_as_it_was)
{
	const auto start = decodeToHost(
		encode(Start{"p", "r", {"/a", "/b"}, true, false, "de", "d:f", "[values]", 20, true, false, true}));
	ASSERT_TRUE(start && std::holds_alternative<Start>(*start));
	const Start &s = std::get<Start>(*start);
	EXPECT_EQ(s.plugin + s.root + s.served.at(1) + s.lang + s.catalogue + s.skin, "pr/bded:f[values]");
	EXPECT_TRUE(s.contained && !s.asIs && s.draws && !s.describes && s.traces && s.rowHeight == 20);
	const auto press = decodeToHost(encode(Press{Key::digit9, true}));
	ASSERT_TRUE(press && std::holds_alternative<Press>(*press));
	EXPECT_EQ(std::get<Press>(*press).key, Key::digit9);
	EXPECT_TRUE(std::get<Press>(*press).again);
	const auto click = decodeToHost(encode(Click{-3, 700, 1, 2}));
	ASSERT_TRUE(click && std::holds_alternative<Click>(*click));
	EXPECT_EQ(std::get<Click>(*click).x, -3);
	EXPECT_EQ(std::get<Click>(*click).upY, 2);
	EXPECT_EQ(back<Returned>(Returned{-1234567}).result, -1234567);
	EXPECT_EQ(back<Meaning>(Meaning{{Key::up, Key::ok}}).keys, (std::vector<Key>{Key::up, Key::ok}));
	EXPECT_EQ(back<Failed>(Failed{2, "why"}).why, "why");
	EXPECT_TRUE(back<Note>(Note{"line", true}).urgent);
	EXPECT_EQ(back<Call>(Call{"eDebug()", false}).line, "eDebug()");
	EXPECT_TRUE(back<Call>(Call{"key ok", true}).aside);
	const Crash crash =
		back<Crash>(Crash{11, 0, "what", "event", "call", "gone", {{"file", 0x7fffffffffff}, {"", 1}}});
	EXPECT_EQ(crash.signal, 11);
	EXPECT_EQ(crash.stack.at(0).offset, 0x7fffffffffffu);
	EXPECT_EQ(crash.stack.at(1).offset, 1u);
	back<Loaded>(Loaded());
	back<CommandEnded>(CommandEnded());
	back<Harm>(Harm{true});
}

TEST(Wire, keeps_places_within_bounds)
{
	DisplayList frame;
	frame.fill({0, 0, INT_MAX, INT_MAX}, Fill::plain({1, 2, 3}, INT_MAX));
	Frame message;
	message.edit = frame.editOf(DisplayList());
	DisplayList list;
	EXPECT_EQ(list.apply(back<Frame>(message).edit), wholeScreen);
	EXPECT_EQ(drawn(list).find(std::to_string(INT_MAX)), std::string::npos);
}

TEST(Wire, takes_nothing_else)
{
	Frame message;
	message.edit = someFrame().editOf(DisplayList());
	const std::string whole = encode(message);
	for (size_t length = 0; length < whole.size(); ++length)
		EXPECT_FALSE(decodeToViewer(whole.substr(0, length))) << length;
	EXPECT_FALSE(decodeToViewer(whole + '\0'));
	EXPECT_FALSE(decodeToHost(encode(ToViewer(Returned{5}))));
	for (const char *deep : {"\x81", "\x9f", "\x7f", "\x5f", "\xc1", "\xbf", "\xa1"})
		EXPECT_FALSE(decodeToViewer([&] {
			std::string bytes;
			for (int i = 0; i < 1000000; ++i)
				bytes += deep;
			return bytes;
		}()))
			<< deep;
	EXPECT_FALSE(decodeToViewer(std::string("\x9b\x7f\xff\xff\xff\xff\xff\xff\xff", 9)));
	std::minstd_rand random(4711);
	for (int i = 0; i < 4000; ++i) {
		std::string spoilt = whole;
		spoilt[random() % spoilt.size()] = static_cast<char>(random());
		if (auto came = decodeToViewer(spoilt); came && std::holds_alternative<Frame>(*came)) {
			DisplayList list;
			list.apply(std::get<Frame>(*came).edit);
			drawn(list);
		}
	}
}

TEST(Channel, hands_messages_on_in_pieces_of_any_size)
{
	int ends[2];
	ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
	Channel in(ends[0], ends[0]), out(ends[1], ends[1]);
	EXPECT_EQ(in.read(), Channel::Came::nothing);
	EXPECT_FALSE(in.next());
	const std::string large(300000, 'x'); // more than a pipe holds
	out.put("small");
	out.put(large);
	out.put("");
	out.flush();
	EXPECT_FALSE(out.sendsAll());
	std::vector<std::string> came;
	while (came.size() < 3) {
		ASSERT_NE(in.read(), Channel::Came::end);
		out.flush();
		while (const auto message = in.next())
			came.push_back(*message);
	}
	EXPECT_EQ(came, (std::vector<std::string>{"small", large, ""}));
	EXPECT_TRUE(out.sendsAll());
}

TEST(Channel, ends_with_what_is_no_message)
{
	int ends[2];
	ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
	{
		Channel in(ends[0], ends[0]);
		ASSERT_EQ(write(ends[1], "Welcome", 7), 7);
		EXPECT_EQ(in.read(), Channel::Came::bytes);
		EXPECT_FALSE(in.next());
		EXPECT_TRUE(in.isBroken());
		close(ends[1]);
		EXPECT_EQ(in.read(), Channel::Came::end);
	}
}

} // namespace wire_test

// The contract's inline functions, which are compiled into the plugin.

#include "toolkit.h"

#include "list.h"
#include "temp_folder.h"
#include "trace.h"

#include <gtest/gtest.h>

#include <locale>
#include <memory>

namespace
{

struct Entry : eListBoxEntry
{
	using eListBoxEntry::eListBoxEntry;
	void redraw(gPainter *, const eRect &, gColor, gColor, gColor, gColor, int) override {}
};

struct Text : eListBoxEntryText
{
	using eListBoxEntryText::eListBoxEntryText;
	int attribute() const { return attr; }
	int furtherFields() const { return align | precolor; }
	void ignoreKeys() { keytype = keyIgnored; }
	void setText(const std::string &bytes) { text = bytes; }
};

struct Box : eListBox<eListBoxEntryText>
{
	using eListBox::eListBox;
	using eListBox::SendSelChanged;
	using eListBox::SendSelected;
	const List &kept() const { return *list; }
};

struct Listener : SigC::Object
{
	void chosen(eListBoxEntryText *entry) { order.push_back({1, entry}); }
	void again(eListBoxEntryText *entry) { order.push_back({2, entry}); }
	void plain() { ++calls; }

	std::vector<std::pair<int, eListBoxEntry *>> order;
	int calls = 0;
};

TEST(Entry, appends_itself_at_the_end_of_its_list)
{
	eWindow window(1);
	Box *box = new Box(&window);
	const Entry *first = new Entry(box);
	const Entry *second = new Entry(box);
	EXPECT_EQ(box->kept().entries,
	          (std::deque<eListBoxEntry *>{const_cast<Entry *>(first), const_cast<Entry *>(second)}));
	EXPECT_EQ(box->kept().current, 0);
}

TEST(Entry, takes_itself_out_of_its_list)
{
	eWindow window(1);
	Box *box = new Box(&window);
	Entry *first = new Entry(box);
	Entry *second = new Entry(box);
	delete first;
	EXPECT_EQ(box->kept().entries, std::deque<eListBoxEntry *>{second});
}

TEST(Entry, is_less_than_none)
{
	const Entry a(nullptr, "a", 1), b(nullptr, "b", 2);
	EXPECT_FALSE(a < b);
	EXPECT_FALSE(b < a);
	EXPECT_FALSE(a < a);
}

TEST(TextEntry, starts_with_attribute_3_no_key_and_zero_fields)
{
	const Text entry(nullptr, "text");
	EXPECT_EQ(entry.attribute(), 3);
	EXPECT_EQ(entry.getKey(), nullptr);
	EXPECT_EQ(entry.getKeyType(), 0);
	EXPECT_EQ(entry.furtherFields(), 0);
	EXPECT_EQ(entry.getText(), "text");
	EXPECT_EQ(entry.getHelpText(), " ");
}

TEST(TextEntry, counts_an_absent_text_as_empty)
{
	EXPECT_EQ(Text(nullptr, nullptr).getText(), "");
}

/// An entry to compare: its text, its key, and whether its list ignores keys.
struct Ordered
{
	std::string text;
	uintptr_t key = 0;
	bool ignoresKeys = false;

	/// With new, because neither entries nor keys are copied.
	std::unique_ptr<Text> made() const
	{
		auto entry = std::make_unique<Text>(nullptr, "", reinterpret_cast<void *>(key));
		entry->setText(text); // copies every byte
		if (ignoresKeys)
			entry->ignoreKeys();
		return entry;
	}
};

struct Order
{
	Ordered a, b;
	bool isLess, isGreater;
};

void PrintTo(const Order &order, std::ostream *out)
{
	for (const Ordered &entry : {order.a, order.b})
		*out << ::testing::PrintToString(entry.text) << " with key " << entry.key
			 << (entry.ignoresKeys ? " ignored" : "") << ", ";
}

class TextEntryOrder : public ::testing::TestWithParam<Order>
{
};

/// Collates backwards, which entries must ignore.
struct Backwards : std::collate<char>
{
	int do_compare(const char *a, const char *endOfA, const char *b, const char *endOfB) const override
	{
		return std::string(b, endOfB).compare(std::string(a, endOfA));
	}
};

TEST_P(TextEntryOrder, is_by_keys_and_then_by_bytes)
{
	const std::locale before = std::locale::global(std::locale(std::locale(), new Backwards));
	const auto a = GetParam().a.made(), b = GetParam().b.made();
	EXPECT_EQ(*a < *b, GetParam().isLess);
	EXPECT_EQ(*b < *a, GetParam().isGreater);
	EXPECT_FALSE(*a < *a);
	EXPECT_FALSE(*b < *b);
	std::locale::global(before);
}

constexpr uintptr_t low = 8, high = 16, highest = ~uintptr_t{0}; // negative if addresses were signed
constexpr bool ignored = true;

INSTANTIATE_TEST_SUITE_P(
	Pairs, TextEntryOrder,
	::testing::Values(
		// Different keys: the addresses decide.
		Order{{"z", low}, {"a", high}, true, false}, Order{{"a", low}, {"a", high}, true, false},
		Order{{"", high}, {"a", highest}, true, false}, Order{{"z"}, {"a", low}, true, false},
		Order{{"z"}, {"a", highest}, true, false},
		// Equal or missing keys: the texts decide.
		Order{{"abc"}, {"abd"}, true, false}, Order{{"abc", low}, {"abd", low}, true, false},
		Order{{"ab"}, {"abc"}, true, false}, Order{{""}, {"a"}, true, false}, Order{{""}, {""}, false, false},
		Order{{"abc", low}, {"abc", low}, false, false},
		// Bytes compare unsigned, with case, without a locale, NUL included.
		Order{{"a\x7f"}, {"a\x80"}, true, false}, Order{{"z"}, {"\xc3\xa4"}, true, false},
		Order{{"Z"}, {"a"}, true, false}, Order{{"B"}, {"a"}, true, false}, Order{{"A"}, {"a"}, true, false},
		Order{{"10"}, {"9"}, true, false}, Order{{" b"}, {"a"}, true, false},
		Order{{"\t"}, {" "}, true, false},
		Order{{std::string("a\0b", 3)}, {std::string("a\0c", 3)}, true, false},
		Order{{"a"}, {std::string("a\0", 2)}, true, false},
		// Ignored keys: the texts decide, even if equal.
		Order{{"a", high, ignored}, {"z", low, ignored}, true, false},
		Order{{"a", high, ignored}, {"a", low, ignored}, false, false},
		Order{{"", high, ignored}, {"", low, ignored}, false, false},
		Order{{"a", low, ignored}, {"a", low, ignored}, false, false},
		Order{{"a", 0, ignored}, {"a", low, ignored}, false, false},
		// The left operand's key type decides.
		Order{{"z", low, ignored}, {"a", high}, false, false},
		Order{{"a", low, ignored}, {"z", high}, true, false},
		Order{{"a", high, ignored}, {"z", low}, true, true},
		Order{{"a", high, ignored}, {"a", low}, false, true}));

TEST(ListBox, emits_the_choice_in_the_order_of_connection)
{
	eWindow window(1);
	Box *box = new Box(&window);
	eListBoxEntryText *entry = new eListBoxEntryText(box, "one");
	Listener listener;
	box->selected.connect(SigC::slot(listener, &Listener::chosen));
	box->selected.connect(SigC::slot(listener, &Listener::again));
	box->SendSelected(entry);
	box->SendSelected(nullptr);
	EXPECT_EQ(listener.order, (std::vector<std::pair<int, eListBoxEntry *>>{
								  {1, entry}, {2, entry}, {1, nullptr}, {2, nullptr}}));
}

TEST(ListBox, ends_its_signals_in_the_reverse_order)
{
	struct Ending
	{
		~Ending() { order->push_back(name); }
		std::vector<std::string> *order;
		const char *name;
	};
	std::vector<std::string> order;
	{
		eWindow window(1);
		Box *box = new Box(&window);
		const auto connect = [&](auto &signal, const char *name) {
			const std::shared_ptr<Ending> ending(new Ending{&order, name});
			signal.connect([ending](eListBoxEntryText *) {});
		};
		connect(box->selected, "selected");
		connect(box->selchanged, "selchanged");
	}
	EXPECT_EQ(order, (std::vector<std::string>{"selchanged", "selected"}));
}

TEST(ListBox, emits_the_move_on_a_signal_of_its_own)
{
	eWindow window(1);
	Box *box = new Box(&window);
	eListBoxEntryText *entry = new eListBoxEntryText(box, "one");
	Listener listener;
	box->selchanged.connect(SigC::slot(listener, &Listener::chosen));
	box->SendSelChanged(entry);
	box->SendSelected(entry);
	EXPECT_EQ(listener.order, (std::vector<std::pair<int, eListBoxEntry *>>{{1, entry}}));
}

TEST(MenuEntry, passes_on_its_own_choice_whatever_it_says)
{
	// Equal or empty texts, with and without a list.
	for (const char *text : {"same", "", static_cast<const char *>(nullptr)})
		for (const bool listed : {true, false}) {
			eSetupWindow window("menu", 10, 400);
			std::vector<std::unique_ptr<Listener>> listeners;
			std::vector<eListBoxEntryMenu *> entries;
			for (size_t i = 0; i < 3; ++i) {
				entries.push_back(
					new eListBoxEntryMenu(listed ? &window.list : nullptr, text, text ? text : ""));
				listeners.push_back(std::make_unique<Listener>());
				entries[i]->selected.connect(SigC::slot(*listeners[i], &Listener::plain));
			}
			for (eListBoxEntryMenu *chosen :
			     {entries[1], static_cast<eListBoxEntryMenu *>(nullptr), entries[2]})
				if (listed)
					window.list.selected.emit(chosen);
				else
					for (eListBoxEntryMenu *entry : entries)
						entry->LBSelected(chosen);
			EXPECT_EQ(listeners[0]->calls, 0);
			EXPECT_EQ(listeners[1]->calls, 1);
			EXPECT_EQ(listeners[2]->calls, 1);
			if (!listed)
				for (eListBoxEntryMenu *entry : entries)
					delete entry;
		}
}

TEST(MenuEntry, connects_itself_once_to_its_list)
{
	eSetupWindow window("menu", 10, 400);
	Listener listener;
	new eListBoxEntryMenu(&window.list, "one");
	eListBoxEntryMenu *two = new eListBoxEntryMenu(&window.list, "two", "help");
	two->selected.connect(SigC::slot(listener, &Listener::plain));
	window.list.selected.emit(two);
	EXPECT_EQ(listener.calls, 1) << "a second connection would make two of it";
	EXPECT_EQ(two->getHelpText(), "help");
	EXPECT_EQ(two->getKey(), nullptr);
}

TEST(Signals, forget_a_listener_that_is_gone)
{
	SigC::Signal0<void> signal;
	{
		Listener listener;
		signal.connect(SigC::slot(listener, &Listener::plain));
		signal.emit();
		EXPECT_EQ(listener.calls, 1);
	}
	signal.emit(); // calls no slot, or the sanitizers would report it
}

TEST(Signals, let_a_listener_outlive_the_signal)
{
	Listener listener;
	{
		SigC::Signal0<void> signal;
		signal.connect(SigC::slot(listener, &Listener::plain));
	}
	EXPECT_EQ(listener.calls, 0);
}

TEST(SignalObjects, are_deleted_by_their_last_owner_when_managed)
{
	struct Counted : SigC::Object
	{
		explicit Counted(bool &flag) : gone(flag) {}
		~Counted() override { gone = true; }
		bool &gone;
	};
	bool gone = false;
	Counted *object = new Counted(gone);
	object->reference();
	object->reference();
	object->set_manage();
	object->unreference();
	EXPECT_FALSE(gone);
	object->unreference();
	EXPECT_TRUE(gone);

	bool kept = false;
	const auto owned = std::make_unique<Counted>(kept);
	owned->reference();
	owned->unreference();
	EXPECT_FALSE(kept) << "an object that is not managed belongs to whoever made it";
}

TEST(String, formats_into_itself_without_a_limit)
{
	eString text = "none";
	char form[] = "(%d) %s";
	const std::string longText(100000, 'x');
	EXPECT_EQ(&text.sprintf(form, 7, longText.c_str()), &text);
	EXPECT_EQ(text, "(7) " + longText);
}

} // namespace

// The pieces of the contract that live in its headers and are therefore part of the plugin.

#include "toolkit.h"

#include "list.h"
#include "temp_folder.h"
#include "trace.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace
{

struct Entry : eListBoxEntry
{
	using eListBoxEntry::eListBoxEntry;
	void redraw(gPainter *, const eRect &, gColor, gColor, gColor, gColor, int) override {}
	int attribute() const { return attr; }
	eListBoxBase *box() const { return listbox; }
};

struct Text : eListBoxEntryText
{
	using eListBoxEntryText::eListBoxEntryText;
	int attribute() const { return attr; }
	int furtherFields() const { return align | precolor; }
	void ignoreKeys() { keytype = keyIgnored; }
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

TEST(Entry, shows_a_blank_where_the_help_is_empty)
{
	EXPECT_EQ(Entry(nullptr, "").getHelpText(), " ");
	EXPECT_EQ(Entry(nullptr, "help").getHelpText(), "help");
}

TEST(Entry, keeps_its_attribute)
{
	EXPECT_EQ(Entry(nullptr, "", 7).attribute(), 7);
}

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

TEST(Entry, still_has_its_help_when_it_is_taken_out)
{
	struct Watching : Box
	{
		using Box::Box;
		void SendSelChanged(eListBoxEntry *) override { help = going->getHelpText(); }
		eListBoxEntry *going = nullptr;
		std::string help;
	};
	eWindow window(1);
	Watching *box = new Watching(&window);
	// Longer than a string keeps within itself.
	const std::string help(100, 'h');
	box->going = new Entry(box, help);
	delete box->going; // the current one, which the list reports
	EXPECT_EQ(box->help, help);
}

TEST(Entry, says_that_it_is_not_taken_out_by_its_list)
{
	std::string trace;
	desk::Trace::get().start([&](const std::string &line) { trace += line + '\n'; });
	{
		eWindow window(1);
		Box *box = new Box(&window);
		delete new Entry(box);
		desk::Trace::get().stop();
	}
	EXPECT_NE(trace.find("#1, false, false)\n"), std::string::npos) << "appended: " << trace;
	EXPECT_NE(trace.find("#1, false)\n"), std::string::npos) << "taken out: " << trace;
}

TEST(Entry, is_less_than_none)
{
	const Entry a(nullptr), b(nullptr);
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

TEST(TextEntry, orders_by_key_address_when_keys_differ)
{
	int keys[2];
	const Text low(nullptr, "z", &keys[0]), high(nullptr, "a", &keys[1]);
	EXPECT_TRUE(low < high);
	EXPECT_FALSE(high < low);
	const Text top(nullptr, "a", reinterpret_cast<void *>(~uintptr_t{0}));
	EXPECT_TRUE(high < top) << "addresses have no sign";
}

TEST(TextEntry, orders_by_text_when_keys_are_equal)
{
	EXPECT_TRUE(Text(nullptr, "abc") < Text(nullptr, "abd"));
	EXPECT_FALSE(Text(nullptr, "abd") < Text(nullptr, "abc"));
	EXPECT_TRUE(Text(nullptr, "ab") < Text(nullptr, "abc"));
	EXPECT_FALSE(Text(nullptr, "abc") < Text(nullptr, "ab"));
	EXPECT_FALSE(Text(nullptr, "abc") < Text(nullptr, "abc"));
	EXPECT_TRUE(Text(nullptr, "a\x7f") < Text(nullptr, "a\x80")) << "bytes have no sign";
}

TEST(TextEntry, orders_by_text_when_its_own_keys_are_ignored)
{
	int keys[2];
	Text low(nullptr, "z", &keys[0]);
	Text high(nullptr, "a", &keys[1]);
	low.ignoreKeys();
	EXPECT_FALSE(low < high);
	EXPECT_FALSE(high < low) << "this entry's own key type decides, and it compares addresses";
	high.ignoreKeys();
	EXPECT_TRUE(high < low);
}

TEST(TextEntry, compares_addresses_the_other_way_when_only_the_other_ignores_keys)
{
	int keys[2];
	Text low(nullptr, "z", &keys[0]);
	Text high(nullptr, "a", &keys[1]);
	high.ignoreKeys();
	EXPECT_TRUE(low < high);
}

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

TEST(MenuEntry, passes_on_only_its_own_choice)
{
	eListBoxEntryMenu one(nullptr, "one"), two(nullptr, "two");
	Listener first, second;
	one.selected.connect(SigC::slot(first, &Listener::plain));
	two.selected.connect(SigC::slot(second, &Listener::plain));
	for (eListBoxEntryMenu *entry : {&one, &two})
		entry->LBSelected(&two);
	EXPECT_EQ(first.calls, 0);
	EXPECT_EQ(second.calls, 1);
}

TEST(MenuEntry, knows_its_own_choice_by_address_and_not_by_text)
{
	eSetupWindow window("menu", 10, 400);
	eListBoxEntryMenu *one = new eListBoxEntryMenu(&window.list, "same", "same");
	eListBoxEntryMenu *two = new eListBoxEntryMenu(&window.list, "same", "same");
	Listener first, second;
	one->selected.connect(SigC::slot(first, &Listener::plain));
	two->selected.connect(SigC::slot(second, &Listener::plain));
	window.list.selected.emit(two);
	EXPECT_EQ(first.calls, 0);
	EXPECT_EQ(second.calls, 1);
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
	signal.emit(); // calls nobody: the sanitizers would tell
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

TEST(SignalObjects, have_the_counted_object_as_virtual_base)
{
	struct Twice : virtual SigC::Object, virtual SigC::ObjectBase
	{
	};
	EXPECT_TRUE((std::is_convertible_v<Twice *, SigC::ObjectBase *>)) << "one base, not two";
	EXPECT_TRUE(std::has_virtual_destructor_v<SigC::ObjectBase>);
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

// Checks the object files: the symbols that the plugin defines and needs, the order of virtual operations, and the
// base classes against the host's.

#include "signals.h"
#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cxxabi.h>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

using support::pluginPath;

namespace contract_test
{

std::string demangled(const std::string &name)
{
	int status = 0;
	char *text = abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status);
	const std::string result = text ? text : name;
	std::free(text);
	return result;
}

/// The names of the dynamic symbols that the plugin defines, or of those that it needs, without their versions.
std::set<std::string> dynamicSymbols(bool defined)
{
	const support::Outcome outcome =
		support::run({"readelf", "-W", "--dyn-syms", pluginPath()}, {{"LC_ALL", "C"}});
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	std::set<std::string> names;
	for (const std::string &line : support::lines(outcome.out)) {
		std::istringstream words(line);
		std::string number, value, size, type, bind, visibility, section, name;
		words >> number >> value >> size >> type >> bind >> visibility >> section >> name;
		if (!number.empty() && number.back() == ':' && number != "Num:" && type != "SECTION" &&
		    !name.empty() && (section != "UND") == defined)
			names.insert(defined ? name : name.substr(0, name.find('@')));
	}
	return names;
}

/// The classes of an object file, as tools/check-host prints them.
class Object
{
public:
	explicit Object(const std::string &path)
	{
		const support::Outcome outcome =
			support::run({support::sourcePath("tools/check-host"), "--tables", path});
		EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
		Class *current = nullptr;
		for (const std::string &line : support::lines(outcome.out)) {
			if (line.rfind("  ", 0) != 0) { // CLASS, from BASE and BASE:
				const std::string title = line.substr(0, line.rfind(':'));
				const size_t from = title.find(", from ");
				current = &classes[title.substr(0, from)];
				if (from != std::string::npos)
					current->bases = parts(title.substr(from + 7), " and ");
			} else if (current) { // SLOT  what plugins need  OPERATION | OPERATION
				const size_t operations = line.find("  ", line.find_first_not_of(' ', 6));
				current->slots.push_back(
					operations == std::string::npos
						? std::set<std::string>{}
						: parts(line.substr(line.find_first_not_of(' ', operations)), " | "));
			}
		}
	}

	/// The virtual operations of a class in slot order. A slot has several names where the linker folded equal code.
	std::vector<std::set<std::string>> slots(const std::string &name) const { return find(name).slots; }

	std::set<std::string> bases(const std::string &name) const { return find(name).bases; }

private:
	struct Class
	{
		std::set<std::string> bases;
		std::vector<std::set<std::string>> slots;
	};

	/// "-" stands for an empty set.
	static std::set<std::string> parts(const std::string &text, const std::string &separator)
	{
		std::set<std::string> result;
		for (size_t start = 0; start <= text.size();) {
			const size_t end = std::min(text.find(separator, start), text.size());
			if (text.compare(start, end - start, "-") != 0)
				result.insert(text.substr(start, end - start));
			start = end + separator.size();
		}
		return result;
	}

	const Class &find(const std::string &name) const
	{
		static const Class none;
		const auto found = classes.find(name);
		EXPECT_NE(found, classes.end()) << "nothing is known of " << name;
		return found == classes.end() ? none : found->second;
	}

	std::map<std::string, Class> classes;
};

const Object &plugin()
{
	static const Object object(pluginPath());
	return object;
}

const Object &host()
{
	static const Object object(support::pluginHalfPath());
	return object;
}

/// An empty `wanted` stands for a destructor that an abstract class may lack.
bool isOperation(const std::set<std::string> &names, const std::string &wanted)
{
	if (wanted.empty() && names.empty())
		return true;
	if (wanted.empty())
		return std::any_of(names.begin(), names.end(),
		                   [](const std::string &name) { return name.find("::~") != std::string::npos; });
	return std::any_of(names.begin(), names.end(), [&](const std::string &name) {
		return name == wanted || name.rfind(wanted + "(", 0) == 0;
	});
}

void expectSlots(const Object &object, const std::string &name, const std::vector<std::string> &expected)
{
	const auto slots = object.slots(name);
	EXPECT_EQ(slots.size(), expected.size()) << name;
	for (size_t i = 0; i < std::min(slots.size(), expected.size()); ++i)
		EXPECT_TRUE(isOperation(slots[i], expected[i]))
			<< name << " has in slot " << i << " not " << expected[i] << " but "
			<< ::testing::PrintToString(slots[i]);
}

/// eWidget's operations in slot order; `overrides` maps an operation to the class that overrides it.
std::vector<std::string> widgetSlots(const std::string &destructor,
                                     const std::map<std::string, std::string> &overrides)
{
	std::vector<std::string> result = {destructor, destructor};
	for (const char *name :
	     {"willShow", "willHide", "setPalette", "eventFilter", "keyDown", "keyUp", "gotFocus", "lostFocus",
	      "recalcClientRect", "eventHandler", "redrawWidget", "eraseBackground", "setProperty"}) {
		const auto found = overrides.find(name);
		result.push_back((found == overrides.end() ? "eWidget" : found->second) + "::" + name);
	}
	return result;
}

const std::map<std::string, std::string> windowOverrides = {
	{"willShow", "eWindow"},     {"willHide", "eWindow"},     {"recalcClientRect", "eWindow"},
	{"eventHandler", "eWindow"}, {"redrawWidget", "eWindow"}, {"eraseBackground", "eWindow"}};

const std::map<std::string, std::string> menuOverrides = [] {
	auto overrides = windowOverrides;
	overrides["eventHandler"] = "eSetupWindow";
	return overrides;
}();

const std::map<std::string, std::string> decoOverrides = {{"eventFilter", "eDecoWidget"},
                                                          {"setProperty", "eDecoWidget"}};

const std::map<std::string, std::string> listOverrides = {
	{"eventFilter", "eDecoWidget"},       {"gotFocus", "eListBoxBase"},     {"lostFocus", "eListBoxBase"},
	{"recalcClientRect", "eListBoxBase"}, {"eventHandler", "eListBoxBase"}, {"redrawWidget", "eListBoxBase"},
	{"setProperty", "eListBoxBase"}};

std::vector<std::string> listSlots(const std::string &type)
{
	std::vector<std::string> slots = widgetSlots(type + "::~eListBox", listOverrides);
	slots.push_back(type + "::SendSelected");
	slots.push_back(type + "::SendSelChanged");
	return slots;
}

TEST(Plugin, defines_its_entry_and_the_log_path_and_nothing_else)
{
	EXPECT_EQ(dynamicSymbols(true), (std::set<std::string>{"plugin_exec", "ff_scan"}));
}

/// signatures_test has the types of all other operations; a constructor has none.
TEST(Plugin, calls_the_constructors_of_its_host)
{
	std::set<std::string> needed;
	for (const std::string &name : dynamicSymbols(false))
		needed.insert(demangled(name));
	for (const char *constructor :
	     {"eWindow::eWindow(int)", "eSetupWindow::eSetupWindow(char const*, int, int)",
	      "eLabel::eLabel(eWidget*, int, int, char const*)",
	      "eButton::eButton(eWidget*, eLabel*, int, char const*)",
	      "eListBoxBase::eListBoxBase(eWidget*, eWidget const*, int, int, char const*)",
	      "eMessageBox::eMessageBox(eString, eString, int, int, int)"})
		EXPECT_TRUE(needed.count(constructor)) << constructor;
}

/// Symbols that the compiler, the linker and the sanitizers add.
bool isTheirs(const std::string &name)
{
	return std::regex_search(name, std::regex("^(_|\\$|\\.|DW\\.ref\\.|completed(\\.|$)|\\*\\.|"
	                                          "(construction )?vtable for |VTT for |typeinfo )"));
}

TEST(Plugin, keeps_nothing_from_run_to_run_but_the_log_path)
{
	std::set<std::string> kept;
	int functions = 0;
	for (const std::string &line : support::lines(support::run({"nm", pluginPath()}).out)) {
		std::istringstream words(line);
		std::string address, type, name;
		words >> address >> type >> name;
		functions += type == "T" || type == "t";
		if (type.size() == 1 && std::string("bBcCdDgGsSuVv").find(type) != std::string::npos &&
		    !isTheirs(demangled(name)))
			kept.insert(demangled(name));
	}
	EXPECT_GT(functions, 20) << "the plugin is not stripped";
	EXPECT_EQ(kept, std::set<std::string>{"ff_scan"});
}

TEST(Plugin, asks_nothing_of_the_system_but_this)
{
	const std::regex variants("^(__isoc[0-9]+_)?(.*?)(64|_chk)?$");
	const std::set<std::string> known = {"fopen", "fgets", "fclose", "fseek", "ftell", "remove", "system",
	                                     "sscanf", "strstr", "strnlen", "dcgettext", "vasprintf", "free",
	                                     // compilers emit calls of these, a division on ARM of raise
	                                     "memcpy", "memmove", "memset", "memcmp", "strlen", "strcmp", "abort",
	                                     "raise"};
	std::set<std::string> asked;
	for (const std::string &name : dynamicSymbols(false))
		if (name.rfind("_Z", 0) != 0)
			asked.insert(std::regex_replace(name, variants, "$2"));
	EXPECT_TRUE(asked.count("dcgettext"));
	const std::regex runtimes(
		"^(__(asan|ubsan|sanitizer|gcov|cxa|gxx|gmon|stack_chk|aeabi|gnu|libc_single)|_ITM|_Unwind)_.*");
	for (const std::string &name : asked)
		EXPECT_TRUE(known.count(name) || std::regex_match(name, runtimes)) << name;
}

TEST(Plugin, is_a_shared_object_of_its_fixed_name)
{
	EXPECT_EQ(pluginPath().substr(pluginPath().rfind('/') + 1), "vexlomenu.so.0");
}

TEST(Plugin, windows_keep_the_order_of_the_virtual_operations)
{
	expectSlots(plugin(), "eVexloMenu", widgetSlots("eVexloMenu::~eVexloMenu", menuOverrides));
	expectSlots(plugin(), "ePsDialog", widgetSlots("ePsDialog::~ePsDialog", windowOverrides));
	expectSlots(plugin(), "eMemInfoDialog", widgetSlots("eMemInfoDialog::~eMemInfoDialog", windowOverrides));
	expectSlots(plugin(), "eScanLogDialog", widgetSlots("eScanLogDialog::~eScanLogDialog", windowOverrides));
	expectSlots(plugin(), "eSysInfDialog", widgetSlots("eSysInfDialog::~eSysInfDialog", windowOverrides));
}

TEST(Plugin, list_boxes_and_entries_keep_the_order_of_the_virtual_operations)
{
	expectSlots(plugin(), "eListBox<eListBoxEntryText>", listSlots("eListBox<eListBoxEntryText>"));
	expectSlots(plugin(), "eListBoxEntryMenu",
	            {"eListBoxEntryMenu::~eListBoxEntryMenu", "eListBoxEntryMenu::~eListBoxEntryMenu",
	             "eListBoxEntryText::operator<", "eListBoxEntryText::redraw"});
}

TEST(Host, classes_have_the_order_of_the_virtual_operations)
{
	expectSlots(host(), "eWidget", widgetSlots("eWidget::~eWidget", {}));
	expectSlots(host(), "eWindow", widgetSlots("eWindow::~eWindow", windowOverrides));
	expectSlots(host(), "eMessageBox", widgetSlots("eMessageBox::~eMessageBox", windowOverrides));
	expectSlots(host(), "eSetupWindow", widgetSlots("eSetupWindow::~eSetupWindow", menuOverrides));
	expectSlots(host(), "eDecoWidget", widgetSlots("eDecoWidget::~eDecoWidget", decoOverrides));
	expectSlots(host(), "eLabel", widgetSlots("eLabel::~eLabel", decoOverrides));
	expectSlots(host(), "eButton", widgetSlots("eButton::~eButton", decoOverrides));
	expectSlots(host(), "eListBox<eListBoxEntryMenu>", listSlots("eListBox<eListBoxEntryMenu>"));
	expectSlots(host(), "eListBoxEntryText",
	            {"eListBoxEntryText::~eListBoxEntryText", "eListBoxEntryText::~eListBoxEntryText",
	             "eListBoxEntryText::operator<", "eListBoxEntryText::redraw"});
}

TEST(Host, list_box_base_appends_two_pure_operations)
{
	std::vector<std::string> slots = widgetSlots("", listOverrides);
	slots.insert(slots.end(), {"__cxa_pure_virtual", "__cxa_pure_virtual"});
	expectSlots(host(), "eListBoxBase", slots);
}

TEST(Signals, counted_object_keeps_the_order_of_its_virtual_operations)
{
	// Checked in this program, because a host may not use the class itself and then has no table of it.
	SigC::ObjectBase *volatile object = new SigC::ObjectBase; // hidden from the optimiser
	object->reference();
	delete object;
	expectSlots(Object(std::filesystem::read_symlink("/proc/self/exe")), "SigC::ObjectBase",
	            {"SigC::ObjectBase::reference", "SigC::ObjectBase::unreference",
	             "SigC::ObjectBase::set_manage", "SigC::ObjectBase::~ObjectBase",
	             "SigC::ObjectBase::~ObjectBase"});
}

TEST(ClassTree, is_the_hosts)
{
	const std::set<std::string> window = {"eWindow"};
	EXPECT_EQ(plugin().bases("eVexloMenu"), std::set<std::string>{"eSetupWindow"});
	EXPECT_EQ(plugin().bases("ePsDialog"), window);
	EXPECT_EQ(plugin().bases("eMemInfoDialog"), window);
	EXPECT_EQ(plugin().bases("eScanLogDialog"), window);
	EXPECT_EQ(plugin().bases("eSysInfDialog"), window);

	const std::set<std::string> object = {"SigC::Object"};
	EXPECT_EQ(host().bases("eWidget"), object);
	EXPECT_EQ(host().bases("eListBoxEntry"), object);
	EXPECT_EQ(host().bases("eWindow"), std::set<std::string>{"eWidget"});
	EXPECT_EQ(host().bases("eMessageBox"), window);
	EXPECT_EQ(host().bases("eSetupWindow"), std::set<std::string>{"eListBoxWindow<eListBoxEntryMenu>"});
	EXPECT_EQ(host().bases("eListBoxWindow<eListBoxEntryMenu>"), window);
	EXPECT_EQ(host().bases("eDecoWidget"), std::set<std::string>{"eWidget"});
	EXPECT_EQ(host().bases("eLabel"), std::set<std::string>{"eDecoWidget"});
	EXPECT_EQ(host().bases("eButton"), std::set<std::string>{"eLabel"});
	EXPECT_EQ(host().bases("eListBoxBase"), std::set<std::string>{"eDecoWidget"});
	EXPECT_EQ(host().bases("eListBox<eListBoxEntryMenu>"), std::set<std::string>{"eListBoxBase"});
	EXPECT_EQ(host().bases("eListBoxEntryText"), std::set<std::string>{"eListBoxEntry"});
	EXPECT_EQ(plugin().bases("eListBoxEntryMenu"), std::set<std::string>{"eListBoxEntryText"});
	EXPECT_TRUE(host().bases("SigC::Object").count("SigC::ObjectBase"));
}

} // namespace contract_test

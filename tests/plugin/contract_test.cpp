// Looks at the built objects: what the plugin defines and needs, the order of the virtual operations,
// and the base classes, against the host's class tree.

#include "signals.h"
#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

using support::pluginPath;

namespace
{

std::string demangled(const std::string &name)
{
	int status = 0;
	char *text = abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status);
	const std::string result = text ? text : name;
	std::free(text);
	return result;
}

/// One object file as readelf prints it.
class Object
{
public:
	explicit Object(const std::string &path) : wordSize(wordSizeOf(path))
	{
		for (const std::string &line : readelf("-s", path)) {
			std::istringstream words(line);
			std::string number, value, size, type, bind, visibility, section, name;
			words >> number >> value >> size >> type >> bind >> visibility >> section >> name;
			if (number.empty() || number.back() != ':' || number == "Num:" || name.empty())
				continue;
			name = name.substr(0, name.find('@'));
			if (section == "UND")
				continue;
			const uint64_t address = std::stoull(value, nullptr, 16);
			symbols[name] = {address, std::stoull(size, nullptr, 0)};
			names[address].insert(name);
		}
		const std::map<uint64_t, uint64_t> words = relocatedWords(path);
		bool packed = false;
		for (const std::string &line : readelf("-r", path)) {
			if (line.rfind("Relocation section", 0) == 0)
				packed = line.find("'.relr") != std::string::npos;
			// offset  info  type  value  name + addend, or: offset  info  type  addend, or, packed: offset;
			// newer binutils put before the first of several a number with a colon and the entry that packs them
			std::istringstream columns(line);
			std::string offset, info, type, a, name;
			columns >> offset;
			if (packed && !offset.empty() && offset.back() == ':')
				columns >> offset >> offset;
			columns >> info >> type >> a;
			const bool packedOffset = packed && offset.size() == 2 * wordSize;
			// 32-bit targets keep the addend at the relocated address; some give the symbol no version.
			const bool inPlace = type.rfind("R_", 0) == 0 && a.empty();
			if (packedOffset || inPlace) {
				const auto word = words.find(std::stoull(offset, nullptr, 16));
				if (word != words.end() && names.count(word->second))
					targets[word->first] = names[word->second];
			}
			if (type.rfind("R_", 0) != 0 || inPlace)
				continue;
			const uint64_t place = std::stoull(offset, nullptr, 16);
			if (columns >> name) { // and, on 64-bit targets, what is added to it
				targets[place] = {name.substr(0, name.find('@'))};
			} else {
				const uint64_t address = std::stoull(a, nullptr, 16);
				const auto known = names.find(address);
				if (known != names.end())
					targets[place] = known->second;
			}
		}
	}

	/// The virtual operations of a class in slot order, demangled, without arguments. Each slot gives all
	/// names of its target: equal code may be folded under several.
	std::vector<std::set<std::string>> slots(const std::string &mangledClass) const
	{
		const auto table = symbols.find("_ZTV" + mangledClass);
		if (table == symbols.end()) {
			ADD_FAILURE() << "no table of virtual operations for " << mangledClass;
			return {};
		}
		const auto [start, size] = table->second;
		std::vector<std::set<std::string>> result;
		bool within = false;
		for (uint64_t place = start; place < start + size; place += wordSize) {
			const auto target = targets.find(place);
			if (!within) {
				within = target != targets.end() && target->second.count("_ZTI" + mangledClass);
				continue;
			}
			// An abstract class needs no destructors of its own: the compiler may leave these two slots
			// empty. Later, a word that points nowhere belongs to the next base's table.
			if (target == targets.end() && result.size() >= 2)
				break;
			std::set<std::string> operations;
			if (target != targets.end())
				for (const std::string &name : target->second)
					operations.insert(demangled(name));
			result.push_back(operations);
		}
		return result;
	}

	/// What the type information of a class refers to: its direct bases among it.
	std::set<std::string> typeReferences(const std::string &mangledClass) const
	{
		std::set<std::string> result;
		const auto info = symbols.find("_ZTI" + mangledClass);
		if (info == symbols.end()) {
			ADD_FAILURE() << "no type information for " << mangledClass;
			return {};
		}
		const auto [start, size] = info->second;
		for (uint64_t place = start; place < start + size; place += wordSize)
			if (const auto target = targets.find(place); target != targets.end())
				for (const std::string &name : target->second)
					if (name.rfind("_ZTI", 0) == 0)
						result.insert(name.substr(4));
		return result;
	}

	static std::vector<std::string> readelf(const std::string &what, const std::string &path)
	{
		const support::Outcome outcome = support::run({"readelf", "-W", what, path}, {{"LC_ALL", "C"}});
		EXPECT_EQ(outcome.status, 0) << outcome.err;
		return support::lines(outcome.out);
	}

private:
	/// The words of the section that holds the tables: address to content. A packed relocation says
	/// where a pointer is; what it points to is its content.
	std::map<uint64_t, uint64_t> relocatedWords(const std::string &path) const
	{
		std::map<uint64_t, uint64_t> result;
		const std::string bytes = support::readFile(path);
		for (const std::string &line : readelf("-S", path)) {
			const size_t section = line.find("] .data.rel.ro");
			if (section == std::string::npos)
				continue;
			std::istringstream columns(line.substr(section + 2));
			std::string name, type, address, offset, size;
			columns >> name >> type >> address >> offset >> size;
			const uint64_t start = std::stoull(address, nullptr, 16);
			const uint64_t length = std::stoull(size, nullptr, 16);
			const uint64_t from = std::stoull(offset, nullptr, 16);
			for (uint64_t at = 0; at + wordSize <= length; at += wordSize) {
				uint64_t word = 0; // least significant byte first, as on all of our targets
				std::memcpy(&word, bytes.data() + from + at, wordSize);
				result[start + at] = word;
			}
		}
		return result;
	}

	/// Bytes of a pointer, by the class in the file's header.
	static size_t wordSizeOf(const std::string &path)
	{
		const std::string bytes = support::readFile(path);
		EXPECT_GT(bytes.size(), 5u) << path;
		EXPECT_EQ(bytes.at(5), 1) << path << " has its most significant bytes first";
		return bytes.at(4) == 1 ? 4 : 8;
	}

	const size_t wordSize;
	std::map<std::string, std::pair<uint64_t, uint64_t>> symbols; ///< name: address, size
	std::map<uint64_t, std::set<std::string>> names;
	std::map<uint64_t, std::set<std::string>> targets; ///< address of a pointer: what it points to
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

/// `wanted` empty: a destructor that an abstract class may have or not.
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

void expectSlots(const Object &object, const std::string &mangledClass,
                 const std::vector<std::string> &expected)
{
	const auto slots = object.slots(mangledClass);
	EXPECT_EQ(slots.size(), expected.size()) << mangledClass;
	for (size_t i = 0; i < std::min(slots.size(), expected.size()); ++i)
		EXPECT_TRUE(isOperation(slots[i], expected[i]))
			<< mangledClass << " has in slot " << i << " not " << expected[i] << " but "
			<< ::testing::PrintToString(slots[i]);
}

/// eWidget's operations, in slot order, as a class overrides them: name of the operation to its class.
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
	std::set<std::string> defined;
	for (const std::string &line : Object::readelf("--dyn-syms", pluginPath())) {
		std::istringstream words(line);
		std::string number, value, size, type, bind, visibility, section, name;
		words >> number >> value >> size >> type >> bind >> visibility >> section >> name;
		if (!number.empty() && number.back() == ':' && number != "Num:" && section != "UND" &&
		    type != "SECTION" && !name.empty())
			defined.insert(name);
	}
	EXPECT_EQ(defined, (std::set<std::string>{"plugin_exec", "ff_scan"}));
}

TEST(Plugin, resolves_the_toolkit_from_its_host)
{
	std::set<std::string> needed;
	for (const std::string &line : Object::readelf("--dyn-syms", pluginPath())) {
		std::istringstream words(line);
		std::string number, value, size, type, bind, visibility, section, name;
		words >> number >> value >> size >> type >> bind >> visibility >> section >> name;
		if (section == "UND")
			needed.insert(demangled(name.substr(0, name.find('@'))));
	}
	for (const char *operation :
	     {"eWindow::eWindow(int)",
	      "eSetupWindow::eSetupWindow(char const*, int, int)",
	      "eWidget::setText(eString const&)",
	      "eWidget::cmove(ePoint const&)",
	      "eWidget::cresize(eSize const&)",
	      "eWidget::move(ePoint const&)",
	      "eWidget::resize(eSize const&)",
	      "eWidget::show()",
	      "eWidget::hide()",
	      "eWidget::exec()",
	      "eWidget::accept()",
	      "eWidget::reject()",
	      "eWidget::setFocus(eWidget*)",
	      "eWidget::setShortcut(eString const&)",
	      "eLabel::setShortcutPixmap(eString const&)",
	      "eDecoWidget::loadDeco()",
	      "eLabel::eLabel(eWidget*, int, int, char const*)",
	      "eButton::eButton(eWidget*, eLabel*, int, char const*)",
	      "eListBoxBase::eListBoxBase(eWidget*, eWidget const*, int, int, char const*)",
	      "eListBoxBase::setFlags(int)",
	      "eListBoxBase::append(eListBoxEntry*, bool, bool)",
	      "eListBoxBase::remove(eListBoxEntry*, bool)",
	      "eListBoxEntryText::getEntryHeight()",
	      "eMessageBox::eMessageBox(eString, eString, int, int, int)",
	      "eSkin::getActive()",
	      "eSkin::queryValue(eString const&, int) const",
	      "eString::sprintf(char*, ...)",
	      "eDebug(char const*, ...)"})
		EXPECT_TRUE(needed.count(operation)) << operation;
}

TEST(Plugin, is_a_shared_object_of_its_fixed_name)
{
	EXPECT_EQ(pluginPath().substr(pluginPath().rfind('/') + 1), "vexlomenu.so.0");
}

TEST(Plugin, windows_keep_the_order_of_the_virtual_operations)
{
	expectSlots(plugin(), "10eVexloMenu", widgetSlots("eVexloMenu::~eVexloMenu", menuOverrides));
	expectSlots(plugin(), "9ePsDialog", widgetSlots("ePsDialog::~ePsDialog", windowOverrides));
	expectSlots(plugin(), "14eMemInfoDialog",
	            widgetSlots("eMemInfoDialog::~eMemInfoDialog", windowOverrides));
	expectSlots(plugin(), "14eScanLogDialog",
	            widgetSlots("eScanLogDialog::~eScanLogDialog", windowOverrides));
	expectSlots(plugin(), "13eSysInfDialog", widgetSlots("eSysInfDialog::~eSysInfDialog", windowOverrides));
}

TEST(Plugin, list_boxes_and_entries_keep_the_order_of_the_virtual_operations)
{
	expectSlots(plugin(), "8eListBoxI17eListBoxEntryTextE", listSlots("eListBox<eListBoxEntryText>"));
	expectSlots(plugin(), "17eListBoxEntryMenu",
	            {"eListBoxEntryMenu::~eListBoxEntryMenu", "eListBoxEntryMenu::~eListBoxEntryMenu",
	             "eListBoxEntryText::operator<", "eListBoxEntryText::redraw"});
}

TEST(Host, classes_have_the_order_of_the_virtual_operations)
{
	expectSlots(host(), "7eWidget", widgetSlots("eWidget::~eWidget", {}));
	expectSlots(host(), "7eWindow", widgetSlots("eWindow::~eWindow", windowOverrides));
	expectSlots(host(), "11eMessageBox", widgetSlots("eMessageBox::~eMessageBox", windowOverrides));
	expectSlots(host(), "12eSetupWindow", widgetSlots("eSetupWindow::~eSetupWindow", menuOverrides));
	expectSlots(host(), "11eDecoWidget", widgetSlots("eDecoWidget::~eDecoWidget", decoOverrides));
	expectSlots(host(), "6eLabel", widgetSlots("eLabel::~eLabel", decoOverrides));
	expectSlots(host(), "7eButton", widgetSlots("eButton::~eButton", decoOverrides));
	expectSlots(host(), "8eListBoxI17eListBoxEntryMenuE", listSlots("eListBox<eListBoxEntryMenu>"));
	expectSlots(host(), "17eListBoxEntryText",
	            {"eListBoxEntryText::~eListBoxEntryText", "eListBoxEntryText::~eListBoxEntryText",
	             "eListBoxEntryText::operator<", "eListBoxEntryText::redraw"});
}

TEST(Host, list_box_base_appends_two_pure_operations)
{
	std::vector<std::string> slots = widgetSlots("", listOverrides);
	slots.insert(slots.end(), {"__cxa_pure_virtual", "__cxa_pure_virtual"});
	expectSlots(host(), "12eListBoxBase", slots);
}

TEST(Signals, counted_object_keeps_the_order_of_its_virtual_operations)
{
	// In this program's own code: hosts of this kind may not use the class itself, and then have no table of it.
	SigC::ObjectBase *volatile object = new SigC::ObjectBase; // out of the optimiser's sight
	object->reference();
	delete object;
	expectSlots(Object(std::filesystem::read_symlink("/proc/self/exe")), "N4SigC10ObjectBaseE",
	            {"SigC::ObjectBase::reference", "SigC::ObjectBase::unreference",
	             "SigC::ObjectBase::set_manage", "SigC::ObjectBase::~ObjectBase",
	             "SigC::ObjectBase::~ObjectBase"});
}

TEST(ClassTree, is_the_hosts)
{
	const std::set<std::string> window = {"7eWindow"};
	EXPECT_EQ(plugin().typeReferences("10eVexloMenu"), std::set<std::string>{"12eSetupWindow"});
	EXPECT_EQ(plugin().typeReferences("9ePsDialog"), window);
	EXPECT_EQ(plugin().typeReferences("14eMemInfoDialog"), window);
	EXPECT_EQ(plugin().typeReferences("14eScanLogDialog"), window);
	EXPECT_EQ(plugin().typeReferences("13eSysInfDialog"), window);

	const std::set<std::string> object = {"N4SigC6ObjectE"};
	EXPECT_EQ(host().typeReferences("7eWidget"), object);
	EXPECT_EQ(host().typeReferences("13eListBoxEntry"), object);
	EXPECT_EQ(host().typeReferences("7eWindow"), std::set<std::string>{"7eWidget"});
	EXPECT_EQ(host().typeReferences("11eMessageBox"), window);
	EXPECT_EQ(host().typeReferences("12eSetupWindow"),
	          std::set<std::string>{"14eListBoxWindowI17eListBoxEntryMenuE"});
	EXPECT_EQ(host().typeReferences("14eListBoxWindowI17eListBoxEntryMenuE"), window);
	EXPECT_EQ(host().typeReferences("11eDecoWidget"), std::set<std::string>{"7eWidget"});
	EXPECT_EQ(host().typeReferences("6eLabel"), std::set<std::string>{"11eDecoWidget"});
	EXPECT_EQ(host().typeReferences("7eButton"), std::set<std::string>{"6eLabel"});
	EXPECT_EQ(host().typeReferences("12eListBoxBase"), std::set<std::string>{"11eDecoWidget"});
	EXPECT_EQ(host().typeReferences("8eListBoxI17eListBoxEntryMenuE"),
	          std::set<std::string>{"12eListBoxBase"});
	EXPECT_EQ(host().typeReferences("17eListBoxEntryText"), std::set<std::string>{"13eListBoxEntry"});
	EXPECT_EQ(plugin().typeReferences("17eListBoxEntryMenu"), std::set<std::string>{"17eListBoxEntryText"});
	EXPECT_TRUE(host().typeReferences("N4SigC6ObjectE").count("N4SigC10ObjectBaseE"));
}

} // namespace

// Plugins with a note of another contract than this host's.

#include "contract.h"

#include "econtract.h"
#include "error_of.h"
#include "plugin.h"
#include "support.h"

#include <gtest/gtest.h>

#include <elf.h>
#include <link.h>

#include <cstddef>
#include <numeric>
#include <vector>

namespace contract_test
{

using desk::differenceOfContract;
using desk::Plugin;
using support::TempFolder;

std::string contractPlugin(const std::string &name)
{
	return CONTRACTS + name + ".so.0";
}

TEST(Contract, is_the_same_for_a_plugin_of_this_host)
{
	EXPECT_EQ(differenceOfContract(contractPlugin("same")), "");
	EXPECT_EQ(Plugin::load(contractPlugin("same"))->exec(), 4711);
}

TEST(Contract, is_told_apart_by_a_virtual_operation)
{
	EXPECT_EQ(differenceOfContract(contractPlugin("operation_more")),
	          "eWidget has 1 virtual operation more than here");
	EXPECT_EQ(differenceOfContract(contractPlugin("operation_less")),
	          "eWidget has 1 virtual operation less than here");
	EXPECT_EQ(differenceOfContract(contractPlugin("operations_more")),
	          "eListBoxBase has 2 virtual operations more than here");
}

TEST(Contract, is_told_apart_by_a_member)
{
	EXPECT_EQ(differenceOfContract(contractPlugin("member_more")),
	          "eListBoxEntryText has 64 bytes more than here");
}

TEST(Contract, is_told_apart_by_its_signals)
{
	const std::string said = differenceOfContract(contractPlugin("other_layer"));
	EXPECT_EQ(said.rfind("its signals are those of libsigc++ 2, here those of libsigc++ ", 0), 0u) << said;
}

TEST(Contract, is_told_apart_by_its_classes)
{
	EXPECT_EQ(differenceOfContract(contractPlugin("class_more")),
	          "it tells of other classes than this host knows");
}

TEST(Contract, keeps_a_plugin_of_another_one_from_running)
{
	EXPECT_EQ(support::errorOf([] { Plugin::load(contractPlugin("operation_more")); }),
	          "cannot load the plugin '" + contractPlugin("operation_more") +
	              "': it was built against another contract: eWidget has 1 virtual operation more "
	              "than here; build it against this host's headers");
}

TEST(Contract, is_not_asked_for)
{
	EXPECT_EQ(differenceOfContract(support::testPlugin("result.so.0")), "") << "a plugin without the note";
	EXPECT_NO_THROW(Plugin::load(support::testPlugin("result.so.0")));
	TempFolder folder;
	EXPECT_EQ(differenceOfContract(folder.path() + "/nothing"), "");
	EXPECT_EQ(differenceOfContract(folder.write("text", "#!/bin/sh\n")), "");
	EXPECT_EQ(differenceOfContract(folder.path()), "");
}

TEST(Contract, is_read_from_any_bytes)
{
	std::string whole = support::readFile(contractPlugin("same"));
	const size_t note = whole.find(std::string("Vexlo\0\0\0libsigc++", 17)) - sizeof(Elf32_Nhdr);
	const size_t shapes = note + offsetof(eContractNote, contract) + offsetof(eContract, shapes);
	const size_t end = note + sizeof(eContractNote);
	ASSERT_LE(end, whole.size());
	whole.resize(end);
	TempFolder folder;

	for (size_t size = 0; size < end; size += 7)
		EXPECT_EQ(differenceOfContract(folder.write("cut", whole.substr(0, size))).find("byte"),
		          std::string::npos)
			<< size;
	std::vector<size_t> places(512); // ELF header, program headers and their surroundings
	std::iota(places.begin(), places.end(), 0);
	for (size_t at = note; at < end; ++at)
		places.push_back(at);
	for (const size_t at : places) {
		std::string spoilt = whole;
		spoilt[at] = '\xff';
		const std::string said = differenceOfContract(folder.write("spoilt", spoilt));
		EXPECT_LT(said.size(), 200u) << at;
		EXPECT_TRUE(at < shapes || !said.empty()) << "byte " << at - note << " of the note is not compared";
	}
}

TEST(PluginFile, that_is_cut_off_anywhere_is_not_loaded)
{
	const TempFolder folder;
	const std::string whole = support::readFile(support::pluginPath());
	EXPECT_FALSE(desk::isCutOff(support::pluginPath()));
	EXPECT_FALSE(desk::isCutOff(folder.write("text", "#!/bin/sh\n"))) << "the loader says what it is";
	for (size_t part = 0; part < 150; ++part) {
		const size_t size = whole.size() * part / 150;
		const std::string path = folder.write("cut.so.0", whole.substr(0, size));
		EXPECT_TRUE(size < sizeof(ElfW(Ehdr)) || desk::isCutOff(path)) << size;
		SCOPED_TRACE(size);
		const std::string error = support::errorOf([&] { Plugin::load(path); });
		EXPECT_EQ(error.rfind("cannot load the plugin '" + path + "': ", 0), 0u) << error;
	}
	EXPECT_TRUE(desk::isCutOff(folder.write("cut.so.0", whole.substr(0, whole.size() - 1))));
}

} // namespace contract_test

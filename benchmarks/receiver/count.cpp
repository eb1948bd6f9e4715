// A QEMU plugin that counts executed instructions. Its argument count=NAME names a file whose first eight bytes hold
// the count at any time.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

// The used part of QEMU's plugin interface, version 1; Debian packages no header of it.
extern "C" {
struct qemu_plugin_tb;
using qemu_plugin_id_t = uint64_t;
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*translated)(qemu_plugin_id_t, qemu_plugin_tb *));
size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb *block);
void qemu_plugin_register_vcpu_tb_exec_inline(qemu_plugin_tb *block, int operation, void *number,
                                              uint64_t operand);
extern int qemu_plugin_version;
int qemu_plugin_version = 1;
int qemu_plugin_install(qemu_plugin_id_t id, const void *info, int count, char **arguments);
}

namespace
{

constexpr int addToNumber = 0; // the interface's only operation
void *executed = nullptr;

void translated(qemu_plugin_id_t, qemu_plugin_tb *block)
{
	qemu_plugin_register_vcpu_tb_exec_inline(block, addToNumber, executed, qemu_plugin_tb_n_insns(block));
}

} // namespace

int qemu_plugin_install(qemu_plugin_id_t id, const void *, int count, char **arguments)
{
	if (count != 1 || strncmp(arguments[0], "count=", 6) != 0)
		return -1;
	const int file = open(arguments[0] + 6, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
	if (file < 0 || ftruncate(file, sizeof(uint64_t)) != 0)
		return -1;
	executed = mmap(nullptr, sizeof(uint64_t), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
	close(file);
	if (executed == MAP_FAILED)
		return -1;
	qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
	return 0;
}

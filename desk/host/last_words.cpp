#include "last_words.h"

#include "caller.h"
#include "channel.h"
#include "message.h"
#include "trace.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <linux/kd.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <exception>
#include <new>
#include <typeinfo>
#include <variant>

namespace desk
{

namespace
{

constexpr int failures[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS};
constexpr int mostPlaces = 64;

int input = -1, output = -1;
pid_t self = 0;
char childrenName[64]; ///< the file with the ids of this process's children
char exceptionText[1000];
std::string outOfMemory; ///< an encoded message
char consoleName[1000];
long displayMode = 0, keyboardMode = 0;

/// Encodes a Crash as wire/message.cpp does, with async-signal-safe operations only.
class Message
{
public:
	void array(unsigned count) { put(static_cast<char>(0x80 | count)); }
	void number(uint64_t value)
	{
		put('\x1b');
		for (int shift = 56; shift >= 0; shift -= 8)
			put(static_cast<char>(value >> shift & 255));
	}
	void text(const char *from, size_t length)
	{
		length = std::min({length, size_t{2000}, sizeof bytes - size - 16});
		put('\x79');
		put(static_cast<char>(length >> 8));
		put(static_cast<char>(length & 255));
		memcpy(bytes + size, from, length);
		size += length;
	}
	/// An array of at most 0xFFFF values.
	void longArray(size_t count)
	{
		put('\x99');
		put(static_cast<char>(count >> 8));
		put(static_cast<char>(count & 255));
	}
	bool hasRoom() const { return size + 1000 < sizeof bytes; }
	void send() const
	{
		const char length[] = {0, 0, static_cast<char>(size >> 8), static_cast<char>(size & 255)};
		[[maybe_unused]] ssize_t written = write(output, length, sizeof length);
		written = write(output, bytes, size);
	}

private:
	void put(char byte) { bytes[size++] = byte; }

	char bytes[32768];
	size_t size = 0;
};

void *placeOf(const void *context)
{
	const auto &registers = static_cast<const ucontext_t *>(context)->uc_mcontext;
#if defined(__x86_64__)
	return reinterpret_cast<void *>(registers.gregs[REG_RIP]);
#elif defined(__i386__)
	return reinterpret_cast<void *>(registers.gregs[REG_EIP]);
#elif defined(__aarch64__)
	return reinterpret_cast<void *>(registers.pc);
#elif defined(__arm__)
	return reinterpret_cast<void *>(registers.arm_pc);
#elif defined(__mips__)
	return reinterpret_cast<void *>(static_cast<uintptr_t>(registers.pc));
#else
	static_cast<void>(registers);
	return nullptr;
#endif
}

/// The name of a deleted object to which a register points, or null.
const char *goneIn(const void *context)
{
	const auto &registers = static_cast<const ucontext_t *>(context)->uc_mcontext;
	uintptr_t words[sizeof registers / sizeof(uintptr_t)];
	memcpy(words, &registers, sizeof words);
	// Objects deleted by a window first: plugins often delete those again.
	for (const bool byHost : {true, false})
		for (const uintptr_t word : words)
			if (const char *name = Trace::get().nameOfGone(word, byHost))
				return name;
	return nullptr;
}

/// `place`: where the signal occurred; null: start with this function's caller.
void say(int signal, int status, void *place, const char *gone = nullptr)
{
	if (getpid() != self)
		return;             // a process forked by the plugin
	static Message message; // the stack may be full
	void *stack[mostPlaces];
	const int depth = backtrace(stack, mostPlaces);
	void **first = place ? std::find(stack, stack + depth, place) : stack + 1;
	if (first == stack + depth) // the stack cannot be unwound to the place
		*(first = stack) = place;
	const auto end = first == stack && place && *stack == place ? stack + 1 : stack + depth;

	message.array(8);
	message.number(ToViewer(Crash()).index());
	message.number(static_cast<uint64_t>(signal));
	message.number(static_cast<uint64_t>(status & 255));
	message.text(exceptionText, strlen(exceptionText));
	for (const std::string *line : {&Trace::get().lastEvent(), &Trace::get().last()})
		message.text(line->data(), line->size());
	message.text(gone ? gone : "", gone ? strlen(gone) : 0);
	message.longArray(2 * static_cast<size_t>(end - first));
	for (void **at = first; at != end; ++at) {
		Dl_info info = {};
		// A return address may belong to the next function, so use the byte before it.
		const char *address = static_cast<const char *>(*at) - (at == first && place ? 0 : 1);
		const bool known = message.hasRoom() && dladdr(address, &info) != 0 && info.dli_fname;
		message.text(known ? info.dli_fname : "", known ? strlen(info.dli_fname) : 0);
		message.number(
			static_cast<uint64_t>(address - (known ? static_cast<const char *>(info.dli_fbase) : nullptr)));
	}
	message.send();
}

void onFailure(int signal, siginfo_t *, void *context)
{
	say(signal, 0, placeOf(context), goneIn(context));
	raise(signal); // SA_RESETHAND restored the default action
}

void onTerminate()
{
	if (const std::type_info *type = abi::__cxa_current_exception_type()) {
		int status = 0;
		const char *name = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
		std::string text = name ? name : type->name();
		try {
			throw;
		} catch (const std::exception &exception) {
			text += std::string(": ") + exception.what();
		} catch (...) { // no text to report
		}
		exceptionText[text.copy(exceptionText, sizeof exceptionText - 1)] = '\0';
	}
	std::abort();
}

[[noreturn]] void onWantOfMemory()
{
	[[maybe_unused]] const ssize_t written = write(output, outOfMemory.data(), outOfMemory.size());
	syscall(SYS_exit_group, 1);
	std::abort();
}

void onExit(int status, void *)
{
	sayExit(status);
}

bool isViewerGone(int patience = 0)
{
	pollfd end = {input, POLLRDHUP, 0};
	return poll(&end, 1, patience) > 0 && (end.revents & (POLLHUP | POLLRDHUP | POLLERR)) != 0;
}

/// Each command leads a session, so this kills its process group.
void endCommands()
{
	const int children = openat(AT_FDCWD, childrenName, O_RDONLY | O_CLOEXEC);
	pid_t process = 0;
	for (char digit; read(children, &digit, 1) == 1;)
		if (digit >= '0' && digit <= '9')
			process = 10 * process + (digit - '0');
		else if (process > 0) {
			syscall(SYS_kill, -process, SIGKILL);
			process = 0;
		}
}

void endWithoutViewer()
{
	endCommands();
	if (consoleName[0]) {
		// open() would count as the plugin's, and be traced.
		const int console = openat(AT_FDCWD, consoleName, O_RDWR | O_NOCTTY | O_CLOEXEC);
		ioctl(console, KDSKBMODE, keyboardMode);
		ioctl(console, KDSETMODE, displayMode);
	}
	syscall(SYS_exit_group, 1);
}

/// Input or hang-up of the connection.
void onInput(int)
{
	if (PluginRuns::here() && isViewerGone())
		endWithoutViewer();
}

/// Sent when the viewer's half has ended, or by a user.
void onTerm(int signal)
{
	// The console may hang up shortly before the viewer's half has ended.
	if (isViewerGone(signal == SIGHUP ? 100 : 0))
		endWithoutViewer();
	std::signal(signal, SIG_DFL);
	raise(signal);
}

} // namespace

void keepConsole(const ConsoleModes &console)
{
	consoleName[console.name.copy(consoleName, sizeof consoleName - 1)] = '\0';
	displayMode = console.display;
	keyboardMode = console.keyboard;
}

void sayExit(int status)
{
	if (output >= 0 && PluginRuns::here())
		say(0, status, nullptr);
	output = -1;
}

void prepareLastWords(int in, int out)
{
	input = in;
	output = out;
	self = getpid();
	snprintf(childrenName, sizeof childrenName, "/proc/self/task/%d/children", static_cast<int>(self));
	const std::string failed =
		encode(Failed{1, "there is not enough memory; give it more (ulimit -v), or look at less"});
	outOfMemory = lengthOf(failed.size()) + failed;
	std::set_new_handler(onWantOfMemory);
	std::set_terminate(onTerminate);
	Trace::get(); // constructed now, so that it is destroyed after the exit handler ran
	on_exit(onExit, nullptr);
	void *nothing;
	backtrace(&nothing, 1); // loads libgcc, which allocates memory

	static char reserve[65536]; // for a full stack
	stack_t other = {};
	other.ss_sp = reserve;
	other.ss_size = sizeof reserve;
	sigaltstack(&other, nullptr);
	struct sigaction action = {};
	action.sa_sigaction = onFailure;
	action.sa_flags = static_cast<int>(SA_SIGINFO | SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
	for (const int failure : failures)
		sigaction(failure, &action, nullptr);

	action = {};
	action.sa_handler = onInput;
	action.sa_flags = SA_RESTART; // the plugin does not expect EINTR
	sigaction(SIGIO, &action, nullptr);
	action.sa_handler = onTerm;
	action.sa_flags = SA_RESTART | SA_NODEFER;
	sigaction(SIGTERM, &action, nullptr);
	struct sigaction given = {};
	if (sigaction(SIGHUP, nullptr, &given) == 0 && given.sa_handler != SIG_IGN) // as set by nohup
		sigaction(SIGHUP, &action, nullptr);
	fcntl(in, F_SETOWN, getpid());
	fcntl(in, F_SETFL, fcntl(in, F_GETFL) | O_ASYNC);
}

} // namespace desk

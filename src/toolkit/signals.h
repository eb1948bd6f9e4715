#ifndef VEXLO_SIGNALS_H
#define VEXLO_SIGNALS_H

// Signals and slots as the toolkit uses them: namespace SigC, the interface of libsigc++ 1.2, which
// has SigC::ObjectBase and calls slots in the order of their connection. A receiver's host brings that library. Where there is none, as much of
// the interface as the toolkit uses is made here from libsigc++ 3.0.

#ifdef VEXLO_SIGC1

#if VEXLO_SIGC1 >= 2
#include <sigc++/object_slot.h>
#include <sigc++/signal.h>
#else // as 1.0 names them
#include <sigc++/signal_system.h>
#endif

/// Whose signals and slots these are; two sides with different ones do not fit together.
#define VEXLO_SIGNAL_LAYER "libsigc++ 1"

#else

#include <sigc++/functors/mem_fun.h>
#include <sigc++/signal.h>
#include <sigc++/trackable.h>
#include <type_traits>

#define VEXLO_SIGNAL_LAYER "libsigc++ 3"

namespace SigC
{

/// A counted object. Its virtual operations come first in the order that the 1.2 library has them.
class ObjectBase
{
public:
	ObjectBase() = default;
	/// A copy is an object of its own: nobody refers to it yet.
	ObjectBase(const ObjectBase &) {}
	/// The owners of both stay who they are.
	ObjectBase &operator=(const ObjectBase &) { return *this; }

	/// Counts one more owner.
	virtual void reference() const { ++owners; }

	/// Counts one owner less; a managed object that loses its last owner deletes itself.
	virtual void unreference() const
	{
		if (--owners == 0 && managed)
			delete this;
	}

	/// Hands the object, created with `new`, to its owners: see unreference().
	virtual void set_manage() { managed = true; }

	virtual ~ObjectBase() = default;

private:
	mutable int owners = 0;
	bool managed = false;
};

/// What a slot can call into: destroying it ends every connection that leads to it.
class Object : public virtual ObjectBase, public sigc::trackable
{
};

/// Something to call, for as long as its object lives.
template <class R> using Slot0 = sigc::slot<R()>;
template <class R, class P1> using Slot1 = sigc::slot<R(P1)>;

/// `connect` adds a slot, `emit` runs the slots in the order of their connection; destroying the
/// signal ends its connections. `P`: what it passes.
template <class R, class... P> class Signal : public sigc::signal<R(P...)>
{
public:
	/// Adds a slot, and returns the connection, to end it.
	template <class T> auto connect(const T &slot)
	{
		constexpr bool takes = std::is_invocable_v<const T &, P...>;
		static_assert(takes, "the operation of this slot does not take what the signal passes");
		if constexpr (takes) {
			constexpr bool returns = std::is_same_v<R, std::invoke_result_t<const T &, P...>>;
			static_assert(returns, "the operation of this slot does not return what the signal wants");
			if constexpr (returns)
				return sigc::signal<R(P...)>::connect(slot);
		}
	}
};
template <class R> using Signal0 = Signal<R>;
template <class R, class P1> using Signal1 = Signal<R, P1>;

/// A slot that calls `operation` on `object`, for as long as `object` lives.
template <class T, class Operation> auto slot(T &object, Operation operation)
{
	return sigc::mem_fun(object, operation);
}

} // namespace SigC

#endif

#endif

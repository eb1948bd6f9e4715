#ifndef VEXLO_SIGNALS_H
#define VEXLO_SIGNALS_H

// Signals and slots for the toolkit: namespace SigC with the interface of libsigc++ 1.2, which has SigC::ObjectBase
// and calls slots in the order of connection. A receiver's host has that library. Elsewhere, libsigc++ 3.0 implements
// as much of the interface as the toolkit uses.

#ifdef VEXLO_SIGC1

#if VEXLO_SIGC1 >= 2
#include <sigc++/object_slot.h>
#include <sigc++/signal.h>
#else // as 1.0 names them
#include <sigc++/signal_system.h>
#endif

/// Identifies the signal layer, which must be the same on both sides.
#define VEXLO_SIGNAL_LAYER "libsigc++ 1.2"

#else

#include <sigc++/functors/mem_fun.h>
#include <sigc++/signal.h>
#include <sigc++/trackable.h>
#include <type_traits>

#define VEXLO_SIGNAL_LAYER "libsigc++ 3"

namespace SigC
{

/// A counted object. Its virtual operations come first, in the order of the 1.2 library.
class ObjectBase
{
public:
	ObjectBase() = default;
	/// A copy has no owners yet.
	ObjectBase(const ObjectBase &) {}
	/// Both objects keep their owners.
	ObjectBase &operator=(const ObjectBase &) { return *this; }

	/// Counts one more owner.
	virtual void reference() const { ++owners; }

	/// Removes one owner; a managed object without owners deletes itself.
	virtual void unreference() const
	{
		if (--owners == 0 && managed)
			delete this;
	}

	/// Hands an object made with `new` to its owners: see unreference().
	virtual void set_manage() { managed = true; }

	virtual ~ObjectBase() = default;

private:
	mutable int owners = 0;
	bool managed = false;
};

/// The base of objects with slots. Destroying it ends every connection to them.
class Object : public virtual ObjectBase, public sigc::trackable
{
};

/// A callable that becomes empty when its object is destroyed.
template <class R> using Slot0 = sigc::slot<R()>;
template <class R, class P1> using Slot1 = sigc::slot<R(P1)>;

/// `connect` adds a slot, `emit` calls the slots in the order of connection. Destroying the signal ends its
/// connections. `P`: the arguments.
template <class R, class... P> class Signal : public sigc::signal<R(P...)>
{
public:
	/// Adds a slot, and returns its connection, which can end it.
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

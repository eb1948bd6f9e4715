#ifndef VEXLO_SIGNALS_H
#define VEXLO_SIGNALS_H

// Signals and slots as the toolkit speaks them: namespace SigC, the interface of libsigc++ 1.x.
// A receiver's host brings that library. Where there is none, the same interface stands here on
// libsigc++ 3.0; nothing but this header knows the difference.

#ifdef VEXLO_REAL_SIGC1

#if __has_include(<sigc++/signal_system.h>)
#include <sigc++/signal_system.h>
#else
#include <sigc++/sigc++.h>
#endif

#else

#include <cstring>
#include <sigc++/signal.h>
#include <sigc++/trackable.h>
#include <type_traits>

namespace SigC
{

/// A counted object. Its virtual operations come first in the order that the 1.x library has them.
class ObjectBase
{
public:
	ObjectBase() = default;
	// A copy is an object of its own: nobody refers to it yet.
	ObjectBase(const ObjectBase &) {}
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

using Connection = sigc::connection;

/// What slot() makes: a member operation with the object that it is called on.
template <class T, class Operation> struct Member
{
	T &object;
	Operation operation;
};

/// The same without its types: a call with the address of what the signal passes, for as long as the
/// object lives.
class Call
{
public:
	/// P1: the signal's argument; void: it has none.
	template <class P1, class T, class Operation> static Call to(const Member<T, Operation> &member)
	{
		static_assert(sizeof member.operation == sizeof operation, "not a pointer to a member operation");
		Call call;
		call.target = &member.object;
		call.object = &member.object;
		std::memcpy(call.operation, &member.operation, sizeof operation);
		call.run = &runAs<P1, T, Operation>;
		return call;
	}

	void operator()(void *argument) const { run(*this, argument); }

	/// What ends the call when it ends.
	const sigc::trackable &lifetime() const { return *target; }

private:
	template <class P1, class T, class Operation> static void runAs(const Call &call, void *argument)
	{
		T &object = *static_cast<T *>(call.object);
		Operation operation;
		std::memcpy(&operation, call.operation, sizeof operation);
		if constexpr (std::is_void_v<P1>)
			(object.*operation)();
		else
			(object.*operation)(*static_cast<P1 *>(argument));
	}

	const sigc::trackable *target = nullptr;
	void *object = nullptr;
	unsigned char operation[sizeof(void(Object::*)())] = {};
	void (*run)(const Call &, void *) = nullptr; ///< runAs() of the types that `object` and `operation` have
};

/// What all signals have in common. It is the host's, as the 1.x library is, so that the machinery
/// of signals is not in every plugin as well.
class __attribute__((visibility("default"))) SignalBase
{
public:
	SignalBase(const SignalBase &) = delete;
	SignalBase &operator=(const SignalBase &) = delete;

protected:
	SignalBase();
	~SignalBase();

	Connection add(const Call &call);

	/// Runs the calls with the address of the argument, null for none.
	void run(void *argument) const;

private:
	sigc::signal<void(void *)> calls;
};

/// Something to call without an argument, or with one of type P1, for as long as its object lives.
/// Like the toolkit's signals, it returns nothing: R is void.
template <class R> class Slot0
{
public:
	template <class T, class Operation> Slot0(const Member<T, Operation> &member)
		: call(Call::to<void>(member))
	{
		static_assert(std::is_void_v<R>);
	}

private:
	template <class> friend class Signal0;

	Call call;
};

template <class R, class P1> class Slot1
{
public:
	template <class T, class Operation> Slot1(const Member<T, Operation> &member) : call(Call::to<P1>(member))
	{
		static_assert(std::is_void_v<R>);
	}

private:
	template <class, class> friend class Signal1;

	Call call;
};

/// A signal without an argument. `connect` adds a slot, `emit` or a call runs the slots in the order
/// of their connection; destroying the signal ends its connections.
template <class R> class Signal0 : public SignalBase
{
public:
	Connection connect(const Slot0<R> &slot) { return add(slot.call); }
	void emit() const { run(nullptr); }
	void operator()() const { emit(); }
};

/// A signal with one argument of type P1.
template <class R, class P1> class Signal1 : public SignalBase
{
public:
	Connection connect(const Slot1<R, P1> &slot) { return add(slot.call); }
	void emit(P1 argument) const { run(&argument); }
	void operator()(P1 argument) const { emit(argument); }
};

/// A slot that calls `operation` on `object`, for as long as `object` lives.
template <class T, class Base, class R> Member<T, R (Base::*)()> slot(T &object, R (Base::*operation)())
{
	return {object, operation};
}

template <class T, class Base, class R, class P1>
Member<T, R (Base::*)(P1)> slot(T &object, R (Base::*operation)(P1))
{
	return {object, operation};
}

} // namespace SigC

#endif

#endif

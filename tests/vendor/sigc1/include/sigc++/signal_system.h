// A signal library with the interface of libsigc++ 1.x, as strict as a real one: a slot is connected
// to signals of exactly its own type, emit is not const, nothing but void is returned, and what the
// plugin does not use is not there. It connects and emits for real.
#ifndef SIGC1_SIGNAL_SYSTEM_H
#define SIGC1_SIGNAL_SYSTEM_H

#include <sigc++config.h>
#if SIGCXX_MAJOR_VERSION != 1
#error "this is the 1.x interface"
#endif

namespace SigC
{

class SlotNode;
struct SignalNode;

/// For tests: how many slots were ever connected.
unsigned long connectionsMade();

/// A counted object; its end is the end of the slots that lead to it.
class ObjectBase
{
public:
	ObjectBase();
	virtual void reference() const;
	virtual void unreference() const;
	virtual void set_manage();
	virtual ~ObjectBase();

private:
	ObjectBase(const ObjectBase &);
	ObjectBase &operator=(const ObjectBase &);

	friend class SlotNode;
	mutable int owners;
	bool managed;
	SlotNode *slots; ///< those that lead here, linked
};

class Object : public virtual ObjectBase
{
public:
	Object();
	~Object();
};

/// One call into an object, shared by the slots that are copies of each other and the signals that
/// they are connected to.
class SlotNode
{
public:
	explicit SlotNode(ObjectBase &target);
	void reference();
	void unreference();
	bool leadsSomewhere() const { return object != 0; }

protected:
	virtual ~SlotNode();

private:
	SlotNode(const SlotNode &);
	SlotNode &operator=(const SlotNode &);

	friend class ObjectBase;
	int owners;
	ObjectBase *object; ///< null: gone
	SlotNode *next;
};

/// What slots and signals have in common, whatever they pass.
class SlotBase
{
protected:
	explicit SlotBase(SlotNode *made);
	SlotBase(const SlotBase &other);
	SlotBase &operator=(const SlotBase &other);
	~SlotBase();

	SlotNode *node;
};

class Connection
{
public:
	Connection(SignalNode *of, SlotNode *to);
	Connection(const Connection &other);
	Connection &operator=(const Connection &other);
	~Connection();
	void disconnect();

private:
	SignalNode *signal;
	SlotNode *slot;
};

class SignalBase
{
protected:
	SignalBase();
	~SignalBase();
	Connection add(SlotNode *slot);

	/// Walks the slots that were connected when it began and still lead somewhere.
	class Emission
	{
	public:
		explicit Emission(SignalBase &of);
		~Emission();
		SlotNode *next(); ///< null: no more

	private:
		Emission(const Emission &);
		Emission &operator=(const Emission &);
		SignalNode *signal;
		SlotNode *current;
		unsigned long at, count;
	};

private:
	SignalBase(const SignalBase &);
	SignalBase &operator=(const SignalBase &);
	SignalNode *node;
};

struct CallNode0 : SlotNode
{
	explicit CallNode0(ObjectBase &target) : SlotNode(target) {}
	virtual void call() = 0;
};

template <class P1> struct CallNode1 : SlotNode
{
	explicit CallNode1(ObjectBase &target) : SlotNode(target) {}
	virtual void call(P1 argument) = 0;
};

template <class T> struct ObjectCall0 : CallNode0
{
	ObjectCall0(T &to, void (T::*what)()) : CallNode0(to), object(to), operation(what) {}
	void call() { (object.*operation)(); }
	T &object;
	void (T::*operation)();
};

template <class T, class P1> struct ObjectCall1 : CallNode1<P1>
{
	ObjectCall1(T &to, void (T::*what)(P1)) : CallNode1<P1>(to), object(to), operation(what) {}
	void call(P1 argument) { (object.*operation)(argument); }
	T &object;
	void (T::*operation)(P1);
};

template <class R> class Slot0;
template <class R, class P1> class Slot1;
template <class R> class Signal0;
template <class R, class P1> class Signal1;

template <> class Slot0<void> : public SlotBase
{
public:
	explicit Slot0(CallNode0 *made) : SlotBase(made) {}

private:
	friend class Signal0<void>;
};

template <class P1> class Slot1<void, P1> : public SlotBase
{
public:
	explicit Slot1(CallNode1<P1> *made) : SlotBase(made) {}

private:
	friend class Signal1<void, P1>;
};

template <> class Signal0<void> : public SignalBase
{
public:
	Connection connect(const Slot0<void> &slot) { return add(slot.node); }
	void emit()
	{
		Emission emission(*this);
		while (SlotNode *slot = emission.next())
			static_cast<CallNode0 *>(slot)->call();
	}
	void operator()() { emit(); }
};

template <class P1> class Signal1<void, P1> : public SignalBase
{
public:
	Connection connect(const Slot1<void, P1> &slot) { return add(slot.node); }
	void emit(P1 argument)
	{
		Emission emission(*this);
		while (SlotNode *slot = emission.next())
			static_cast<CallNode1<P1> *>(slot)->call(argument);
	}
	void operator()(P1 argument) { emit(argument); }
};

template <class T, class Base> Slot0<void> slot(T &object, void (Base::*operation)())
{
	return Slot0<void>(new ObjectCall0<Base>(object, operation));
}

template <class T, class Base, class P1> Slot1<void, P1> slot(T &object, void (Base::*operation)(P1))
{
	return Slot1<void, P1>(new ObjectCall1<Base, P1>(object, operation));
}

} // namespace SigC

#endif

// A signal library with the interface of libsigc++ 1.2, as strict as a real one: a signal accepts only slots of
// exactly its type, emit is not const, slots return void. It has only what the plugin uses, and really connects and
// emits. Signals are in signal.h.
#ifndef SIGC1_OBJECT_SLOT_H
#define SIGC1_OBJECT_SLOT_H

#include <sigcconfig.h>
#if SIGC_MAJOR_VERSION != 1 || SIGC_MINOR_VERSION != 2
#error "this is the 1.2 interface"
#endif

namespace SigC
{

class SlotNode;

/// A counted object. Its destructor disconnects the slots that lead to it.
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
	SlotNode *slots; ///< linked list of the slots that lead here
};

class Object : public virtual ObjectBase
{
public:
	Object();
	~Object();
};

/// A call of an object's operation, shared by copies of a slot and the signals connected to it. Only `call` knows the
/// types of the operation and its argument.
class SlotNode
{
public:
	typedef void (ObjectBase::*Operation)();
	typedef void (*Call)(const SlotNode &slot, const void *argument);

	SlotNode(ObjectBase &target, void *object, Operation operation, Call call);
	void reference();
	void unreference();
	bool leadsSomewhere() const { return target != 0; }

	void *const object;
	const Operation operation;
	const Call call;

private:
	~SlotNode();
	SlotNode(const SlotNode &);
	SlotNode &operator=(const SlotNode &);

	friend class ObjectBase;
	int owners;
	ObjectBase *target; ///< null: destroyed
	SlotNode *next;
};

/// The base of slots and signals of all types.
class SlotBase
{
protected:
	explicit SlotBase(SlotNode *made);
	SlotBase(const SlotBase &other);
	SlotBase &operator=(const SlotBase &other);
	~SlotBase();

	SlotNode *node;
};

template <class T> struct ObjectCall0
{
	static void call(const SlotNode &slot, const void *)
	{
		(static_cast<T *>(slot.object)->*reinterpret_cast<void (T::*)()>(slot.operation))();
	}
};

template <class T, class P1> struct ObjectCall1
{
	static void call(const SlotNode &slot, const void *argument)
	{
		(static_cast<T *>(slot.object)->*reinterpret_cast<void (T::*)(P1)>(slot.operation))(
			*static_cast<const P1 *>(argument));
	}
};

template <class R> class Slot0;
template <class R, class P1> class Slot1;
template <class R> class Signal0;
template <class R, class P1> class Signal1;

template <> class Slot0<void> : public SlotBase
{
public:
	explicit Slot0(SlotNode *made) : SlotBase(made) {}

private:
	friend class Signal0<void>;
};

template <class P1> class Slot1<void, P1> : public SlotBase
{
public:
	explicit Slot1(SlotNode *made) : SlotBase(made) {}

private:
	friend class Signal1<void, P1>;
};

template <class T, class Base> Slot0<void> slot(T &object, void (Base::*operation)())
{
	return Slot0<void>(new SlotNode(object, static_cast<Base *>(&object),
	                                reinterpret_cast<SlotNode::Operation>(operation),
	                                ObjectCall0<Base>::call));
}

template <class T, class Base, class P1> Slot1<void, P1> slot(T &object, void (Base::*operation)(P1))
{
	return Slot1<void, P1>(new SlotNode(object, static_cast<Base *>(&object),
	                                    reinterpret_cast<SlotNode::Operation>(operation),
	                                    ObjectCall1<Base, P1>::call));
}

} // namespace SigC

#endif

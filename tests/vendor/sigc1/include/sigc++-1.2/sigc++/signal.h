// Signals: see object_slot.h.
#ifndef SIGC1_SIGNAL_H
#define SIGC1_SIGNAL_H

#include <sigc++/object_slot.h>

namespace SigC
{

struct SignalNode;

/// For tests: called at every connection unless null.
extern void (*connecting)();

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

	/// Calls the slots connected before the call, if they still lead to an object.
	void emitAll(const void *argument);

private:
	SignalBase(const SignalBase &);
	SignalBase &operator=(const SignalBase &);
	SignalNode *node;
};

template <> class Signal0<void> : public SignalBase
{
public:
	Connection connect(const Slot0<void> &slot) { return add(slot.node); }
	void emit() { emitAll(0); }
	void operator()() { emit(); }
};

template <class P1> class Signal1<void, P1> : public SignalBase
{
public:
	Connection connect(const Slot1<void, P1> &slot) { return add(slot.node); }
	void emit(P1 argument) { emitAll(&argument); }
	void operator()(P1 argument) { emit(argument); }
};

} // namespace SigC

#endif

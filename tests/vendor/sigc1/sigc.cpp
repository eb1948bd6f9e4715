#include <sigc++/signal.h>

#include <algorithm>
#include <vector>

namespace SigC
{

/// The slots of a signal. Counted, because a slot may destroy the signal that emits.
struct SignalNode
{
	SignalNode() : owners(1) {}

	void unreference()
	{
		if (--owners > 0)
			return;
		clear();
		delete this;
	}

	void clear()
	{
		std::vector<SlotNode *> going;
		going.swap(slots);
		for (std::size_t i = 0; i < going.size(); ++i)
			if (going[i])
				going[i]->unreference();
	}

	int owners;
	std::vector<SlotNode *> slots; ///< null: disconnected
};

void (*connecting)() = 0;

ObjectBase::ObjectBase() : owners(0), managed(false), slots(0) {}

ObjectBase::~ObjectBase()
{
	for (SlotNode *slot = slots; slot; slot = slot->next)
		slot->target = 0;
}

void ObjectBase::reference() const
{
	++owners;
}

void ObjectBase::unreference() const
{
	if (--owners == 0 && managed)
		delete this;
}

void ObjectBase::set_manage()
{
	managed = true;
}

Object::Object() {}
Object::~Object() {}

SlotNode::SlotNode(ObjectBase &to, void *of, Operation what, Call how)
	: object(of), operation(what), call(how), owners(0), target(&to), next(to.slots)
{
	to.slots = this;
}

SlotNode::~SlotNode()
{
	if (!target)
		return;
	SlotNode **link = &target->slots;
	while (*link != this)
		link = &(*link)->next;
	*link = next;
}

void SlotNode::reference()
{
	++owners;
}

void SlotNode::unreference()
{
	if (--owners == 0)
		delete this;
}

SlotBase::SlotBase(SlotNode *given) : node(given)
{
	node->reference();
}

SlotBase::SlotBase(const SlotBase &other) : node(other.node)
{
	node->reference();
}

SlotBase &SlotBase::operator=(const SlotBase &other)
{
	other.node->reference();
	node->unreference();
	node = other.node;
	return *this;
}

SlotBase::~SlotBase()
{
	node->unreference();
}

Connection::Connection(SignalNode *of, SlotNode *to) : signal(of), slot(to)
{
	++signal->owners;
	slot->reference();
}

Connection::Connection(const Connection &other) : signal(other.signal), slot(other.slot)
{
	++signal->owners;
	slot->reference();
}

Connection &Connection::operator=(const Connection &other)
{
	++other.signal->owners;
	other.slot->reference();
	signal->unreference();
	slot->unreference();
	signal = other.signal;
	slot = other.slot;
	return *this;
}

Connection::~Connection()
{
	signal->unreference();
	slot->unreference();
}

void Connection::disconnect()
{
	const std::vector<SlotNode *>::iterator connected =
		std::find(signal->slots.begin(), signal->slots.end(), slot);
	if (connected == signal->slots.end())
		return;
	*connected = 0;
	slot->unreference();
}

SignalBase::SignalBase() : node(new SignalNode) {}

SignalBase::~SignalBase()
{
	node->clear();
	node->unreference();
}

Connection SignalBase::add(SlotNode *slot)
{
	if (connecting)
		connecting();
	slot->reference();
	node->slots.push_back(slot);
	return Connection(node, slot);
}

void SignalBase::emitAll(const void *argument)
{
	SignalNode *const signal = node; // a slot may destroy `this`
	++signal->owners;
	const std::size_t count = signal->slots.size();
	for (std::size_t at = 0; at < count && at < signal->slots.size(); ++at) {
		SlotNode *const slot = signal->slots[at];
		if (!slot || !slot->leadsSomewhere())
			continue;
		slot->reference();
		slot->call(*slot, argument);
		slot->unreference();
	}
	signal->unreference();
}

} // namespace SigC

#include <sigc++/signal_system.h>

#include <algorithm>
#include <vector>

namespace SigC
{

/// The slots of a signal. Counted: it outlives a signal that ends while it emits.
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

namespace
{

unsigned long made = 0;

} // namespace

unsigned long connectionsMade()
{
	return made;
}

ObjectBase::ObjectBase() : owners(0), managed(false), slots(0) {}

ObjectBase::~ObjectBase()
{
	for (SlotNode *slot = slots; slot; slot = slot->next)
		slot->object = 0;
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

SlotNode::SlotNode(ObjectBase &target) : owners(0), object(&target), next(target.slots)
{
	target.slots = this;
}

SlotNode::~SlotNode()
{
	if (!object)
		return;
	SlotNode **link = &object->slots;
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

SlotBase::SlotBase(SlotNode *made) : node(made)
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
	++made;
	slot->reference();
	node->slots.push_back(slot);
	return Connection(node, slot);
}

SignalBase::Emission::Emission(SignalBase &of)
	: signal(of.node), current(0), at(0), count(of.node->slots.size())
{
	++signal->owners;
}

SignalBase::Emission::~Emission()
{
	if (current)
		current->unreference();
	signal->unreference();
}

SlotNode *SignalBase::Emission::next()
{
	if (current)
		current->unreference();
	current = 0;
	while (!current && at < count && at < signal->slots.size()) {
		SlotNode *slot = signal->slots[at++];
		if (slot && slot->leadsSomewhere())
			current = slot;
	}
	if (current)
		current->reference();
	return current;
}

} // namespace SigC

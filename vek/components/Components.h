#pragma once

// Every class of the component registry.
#include <vek/components/CComponentFactory.h>
#include <vek/components/CComponentInventory.h>
#include <vek/components/CHeap.h>
#include <vek/components/CInstanceFactory.h>
#include <vek/components/CMaxPriorityQueue.h>
#include <vek/components/CPriority.h>
#include <vek/components/CPriorityQueue.h>
#include <vek/components/ComponentProbe.h>

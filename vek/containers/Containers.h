#pragma once

// Every class of the container framework.
#include <vek/containers/CContainer.h>
#include <vek/containers/CContainerReader.h>
#include <vek/containers/CContainerReaderInventory.h>
#include <vek/containers/CContainerWriter.h>
#include <vek/containers/CContainerWriterInventory.h>
#include <vek/containers/Container.h>
#include <vek/containers/ContainerReader.h>

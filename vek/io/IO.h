#pragma once

// Every class of the input/output subsystem.
#include <vek/io/BufferedStream.h>
#include <vek/io/ByteOrder.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CContainerContext.h>
#include <vek/io/CContainerDirectoryContext.h>
#include <vek/io/CContainerMultiFileContext.h>
#include <vek/io/CContainerStreamContext.h>
#include <vek/io/CDataUri.h>
#include <vek/io/CExternalStream.h>
#include <vek/io/CFileDescriptorStream.h>
#include <vek/io/CFileStream.h>
#include <vek/io/CMemoryStream.h>
#include <vek/io/CStream.h>
#include <vek/io/CUri.h>
#include <vek/io/CUriBuilder.h>
#include <vek/io/CUriParameter.h>
#include <vek/io/CUriParameterCollection.h>
#include <vek/io/ContainerContext.h>
#include <vek/io/ExternalStream.h>
#include <vek/io/FileDescriptorStream.h>
#include <vek/io/FileStream.h>
#include <vek/io/Stream.h>
#include <vek/io/Uri.h>

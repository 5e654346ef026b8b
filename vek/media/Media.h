#pragma once

// Every class of the media-description subsystem.

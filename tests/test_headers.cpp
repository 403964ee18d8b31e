// A program without tests of its own: its compilation reads the headers that all test programs share.

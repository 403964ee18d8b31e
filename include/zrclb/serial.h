/* Sending plot data to a device on a serial port. C17 and C++20.
 *
 * 1. A port is named as the system names it: "COM1". On Linux COM1 to COM999 are the devices that the environment variables
 *    ZR_PORT_COM1 (and so on) name, else /dev/ttyS0 (and so on); other names are paths of devices. docs/serial.md.
 * 2. Its configuration is the value of the entry "<port>:" in the section Ports of the file WIN.INI in the system's
 *    Windows folder (on Linux in the folder that ZR_WINDOWS_DIR names, else /etc/zr): baud rate, parity, data bits, stop
 *    bits and handshake, parted by commas, such as "9600,n,8,1,p", which holds when there is no entry.
 *    Parity: e, m, n or o. Stop bits: 1, 1.5 or 2. Handshake: e, p or x, but whichever it is, the port gets hardware
 *    handshake: request to send on handshake, output waits for clear to send, data terminal ready off.
 *    The system reads the configuration first. What it doesn't take keeps the port from being used, and the port stays
 *    open until the program ends; it takes neither e as handshake nor letters without a meaning. What it takes but isn't one of the
 *    small letters above (capital letters, a blank in front, s for parity) makes the configuration faulty, and so
 *    does a port that refuses its settings: the port is used all the same, but PlotToCom32Bit gives 0.
 * 3. Nothing is reported: results and the boxes of WriteFileWinCom tell all. A null or over-long argument (more than 259
 *    characters) is a port or a file that does not exist. What a handle stands for that is no port is neither written to
 *    nor closed.
 * 4. Threads: a port belongs to one at a time; different ports are independent. The kind of the port, kept for the
 *    process, is not guarded. On Linux the variables of the environment must not change meanwhile.
 */
#ifndef ZRCLB_SERIAL_H
#define ZRCLB_SERIAL_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Kinds of the device of the process, as WinCommPortCheck finds them. */
#define WIN_COM_NONE 0  /* no serial port */
#define WIN_COM_16BIT 1 /* a serial port with the old layer */
#define WIN_COM_32BIT 2 /* a serial port with the 32-bit path */

/* Writes the port's configuration, its first 40 characters, to config[0..63] at most and gives 1. 0 if the Windows folder isn't
 * known or has more than 63 characters; config is then empty. 0 too for a null argument. */
ZR_API int GetComEntry(char *config, const char *port) ZR_NOEXCEPT;

/* Opens the port for the caller alone, for reading and writing, and sets it up. Its handle, which the caller closes with
 * CloseWinCom, or 0: there is no such port, it is open already, or the Windows folder isn't known or the system does not
 * take the configuration, and then the port stays open. A port that refuses its settings is given all the same. */
ZR_API zr_value iOpenWinComWrite(const char *port) ZR_NOEXCEPT;

/* Writes buffer[0..count-1] to the port and waits until it is sent, for as long as the device wants. If not all of it is written, the
 * port is closed as CloseWinCom does it: *handle is then 0. Nothing for a null handle or *handle 0. */
ZR_API void WriteWinCom(zr_value *handle, const void *buffer, zr_ulong count) ZR_NOEXCEPT;

/* Closes the port, sets *handle to 0 and the kind of the process to 0. Gives the kind, 0. A null handle or *handle 0
 * only sets the kind. */
ZR_API int CloseWinCom(zr_value *handle) ZR_NOEXCEPT;

/* Sends the file, byte by byte as it is, to the port, which is opened before and closed behind. 1 if all was sent, and also if
 * the file can't be opened. 0: the port can't be used, the configuration is faulty (the file is sent nevertheless), the port
 * took less than it should (it ends there), or there is no memory for a block of 32768 bytes. */
ZR_API int PlotToCom32Bit(const char *file, const char *port) ZR_NOEXCEPT;

/* Writes COMM.TMP in the current folder, for the old layer: three lines, ended by CR LF, with the file's name, the port
 * and its configuration (empty if the Windows folder isn't known). What was in it goes. 1, or 0 if the file can't be
 * opened or an argument is null. */
ZR_API int WriteComEntry(const char *file, const char *port) ZR_NOEXCEPT;

/* PlotToCom32Bit, except on the platform that puts a 32-bit layer on a 16-bit system. There: WriteComEntry, and then
 * the result of PlotToCom16Bit_32(file, port) of the library plotut32.dll, whether the parameter file could be written or
 * not. If that can't be loaded or started, a message box titled "win_com.c" says so, "32Bit Dll couldn't be loaded" or
 * "32Bit Dll couldn't be initialized" (the library then stays loaded), and the result is 0. */
ZR_API int WriteFileWinCom(const char *file, const char *port) ZR_NOEXCEPT;

/* Sets the kind of the process, and gives it: for a device whose name begins with "COM" (capital letters) WIN_COM_32BIT, or
 * WIN_COM_16BIT on the platform with the old layer; for all others and null WIN_COM_NONE. Whether it exists is not
 * looked at. */
ZR_API int WinCommPortCheck(const char *device) ZR_NOEXCEPT;

/* The kind of the process. setWinComPort stores value before if write is 1. */
ZR_API int setWinComPort(int value, int write) ZR_NOEXCEPT;
ZR_API int getWinComPort(void) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif

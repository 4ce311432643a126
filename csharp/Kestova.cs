// Kestova for C#, over its C interface: one file, to be compiled into a program or into a library. It asks for C# 5 and
// .NET Framework 4.0 or later, .NET Standard 2.0, or Mono.
//
// This file is made from the table of operations (./dev bindings).
using System;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;
using System.Threading.Tasks;

namespace Kestova
{
    /// <summary>What became of a call.</summary>
    public enum ProblemCode
    {
        /// <summary>The call was made, and the operation did not fail.</summary>
        None = 0,
        /// <summary>The call was made, and its result is a failure.</summary>
        Failed = 1,
        /// <summary>The handle is null or closed.</summary>
        Handle = 2,
        /// <summary>A size or count is not possible.</summary>
        Argument = 3,
        /// <summary>A call that nobody waits for is still running, or a receiver of the log called.</summary>
        Busy = 4,
        /// <summary>The caller stopped waiting; the call runs on.</summary>
        Stopped = 5,
        /// <summary>Memory ran out.</summary>
        Memory = 6,
        /// <summary>The thread could not be started, or COM not be initialised.</summary>
        System = 7,
        /// <summary>Anything else went wrong in the library.</summary>
        Exception = 8,
        /// <summary>An emulated PC: none is open, or its description or fault cannot be used.</summary>
        Pc = 9
    }

    /// <summary>The style (GetDiskStyle).</summary>
    public enum DiskStyle
    {
        /// <summary>Unknown, or not to be read.</summary>
        Unknown = 0,
        /// <summary>MBR.</summary>
        Mbr = 1,
        /// <summary>GPT.</summary>
        Gpt = 2
    }

    /// <summary>The layout (GetCurrentDiskType).</summary>
    public enum DiskType
    {
        /// <summary>Unknown.</summary>
        Unknown = 0,
        /// <summary>GPT, partition 3 is the EFI system partition.</summary>
        GptEsp = 1,
        /// <summary>GPT, partition 3 is not the EFI system partition.</summary>
        GptOther = 2,
        /// <summary>MBR, partition 2 is labelled "System Reserved".</summary>
        MbrSystemReserved = 3,
        /// <summary>MBR, partition 2 is not labelled System Reserved.</summary>
        MbrOther = 4
    }

    /// <summary>What came of Initialize.</summary>
    public enum InitializeResult
    {
        /// <summary>The service is ready.</summary>
        Ready = 1,
        /// <summary>The service could not be loaded in 20 attempts; a failure: retry.</summary>
        NotLoaded = 0
    }

    /// <summary>What came of GetDiskStyle.</summary>
    public enum GetDiskStyleResult
    {
        /// <summary>Asked; the style tells the rest.</summary>
        Asked = 1,
        /// <summary>There is no volume layer; a failure: give-up, the object was made while memory had run out:
        /// make another one.</summary>
        NoVolumeLayer = 0
    }

    /// <summary>What came of GetCurrentDiskType.</summary>
    public enum GetCurrentDiskTypeResult
    {
        /// <summary>Asked; the type tells the rest.</summary>
        Asked = 1
    }

    /// <summary>What came of IsEFIBootSystem.</summary>
    public enum IsEFIBootSystemResult
    {
        /// <summary>UEFI.</summary>
        Uefi = 1,
        /// <summary>BIOS.</summary>
        Bios = 0
    }

    /// <summary>What came of SetBIOSHibernationPartitionID.</summary>
    public enum SetBIOSHibernationPartitionIDResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>Failed; a failure: retry.</summary>
        Failed = 1
    }

    /// <summary>What came of SetActive.</summary>
    public enum SetActiveResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>Failed; a failure: undo, if GetActivePartitionNumber no longer answers the number from
        /// before, call ClearActive, then SetActive with it.</summary>
        Failed = 1
    }

    /// <summary>What came of ClearActive.</summary>
    public enum ClearActiveResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>Failed; a failure: undo, if GetActivePartitionNumber no longer answers the number from
        /// before, call ClearActive, then SetActive with it.</summary>
        Failed = 1
    }

    /// <summary>What came of GetFactoryPrtDriveLetter.</summary>
    public enum GetFactoryPrtDriveLetterResult
    {
        /// <summary>Asked; the letter tells the rest.</summary>
        Asked = 1
    }

    /// <summary>What came of ActiveOrvoBootPartition.</summary>
    public enum ActiveOrvoBootPartitionResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>The type could not be read; a failure: retry.</summary>
        TypeNotRead = 101,
        /// <summary>The partition has no letter all the same; a failure: undo, DisableOrvoBootPartition takes a
        /// letter that was given.</summary>
        NoLetter = 104,
        /// <summary>The letter could not be given; a failure: retry.</summary>
        LetterNotGiven = 105,
        /// <summary>Partition 1 is not the maker's boot partition; a failure: give-up.</summary>
        OtherType = 113
    }

    /// <summary>What came of DisableOrvoBootPartition.</summary>
    public enum DisableOrvoBootPartitionResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>The letter could not be taken; a failure: retry.</summary>
        LetterNotTaken = 105
    }

    /// <summary>What came of ActiveGPTSystemPartition.</summary>
    public enum ActiveGPTSystemPartitionResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>The type could not be read; a failure: retry.</summary>
        TypeNotRead = 101,
        /// <summary>The partition has no letter all the same; a failure: undo, DisableGPTSystemPartition takes a
        /// letter that was given.</summary>
        NoLetter = 104,
        /// <summary>The letter could not be given; a failure: retry.</summary>
        LetterNotGiven = 105,
        /// <summary>Partition 3 is not the EFI system partition; a failure: give-up.</summary>
        OtherType = 113
    }

    /// <summary>What came of DisableGPTSystemPartition.</summary>
    public enum DisableGPTSystemPartitionResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>The letter could not be taken; a failure: retry.</summary>
        LetterNotTaken = 105
    }

    /// <summary>What came of AssignRecoveryPartition.</summary>
    public enum AssignRecoveryPartitionResult
    {
        /// <summary>Asked; the letter tells the rest.</summary>
        Asked = 1
    }

    /// <summary>What came of AssignWinREPartition.</summary>
    public enum AssignWinREPartitionResult
    {
        /// <summary>Asked; the letter tells the rest.</summary>
        Asked = 1
    }

    /// <summary>What came of GetAllEncryptVolume.</summary>
    public enum GetAllEncryptVolumeResult
    {
        /// <summary>BitLocker was asked.</summary>
        Asked = 1,
        /// <summary>BitLocker cannot be asked; a failure: retry.</summary>
        NotAsked = 0
    }

    /// <summary>What came of GetBitLockerSystemInfo.</summary>
    public enum GetBitLockerSystemInfoResult
    {
        /// <summary>Asked; the outputs tell the rest.</summary>
        Asked = 0,
        /// <summary>There is no internal disk; a failure: retry.</summary>
        NoInternalDisk = 100,
        /// <summary>The partition style is unknown; a failure: retry.</summary>
        StyleUnknown = 106,
        /// <summary>The partition style could not be read; a failure: retry.</summary>
        StyleNotRead = 111,
        /// <summary>The type of partition 3 could not be read; a failure: retry.</summary>
        TypeNotRead = 115,
        /// <summary>There is no volume layer; a failure: give-up, the object was made while memory had run out:
        /// make another one.</summary>
        NoVolumeLayer = 116
    }

    /// <summary>What came of GetVistaOSInfo.</summary>
    public enum GetVistaOSInfoResult
    {
        /// <summary>Found.</summary>
        Found = 0,
        /// <summary>Its partition has no letter, or the layout is another; a failure: retry.</summary>
        NoLetter = 104,
        /// <summary>Its partition holds no Windows; a failure: retry.</summary>
        NoWindows = 110,
        /// <summary>The partition style is unknown or could not be read; a failure: retry.</summary>
        StyleUnknown = 111
    }

    /// <summary>What came of GetWinDriveLetters.</summary>
    public enum GetWinDriveLettersResult
    {
        /// <summary>Done.</summary>
        Done = 1,
        /// <summary>Something failed, or there was no room for all records; a failure: retry, with room for 26
        /// records, one for each letter.</summary>
        Failed = 0
    }

    /// <summary>What came of SetRcvprtActive.</summary>
    public enum SetRcvprtActiveResult
    {
        /// <summary>Done, or it was active already.</summary>
        Done = 0,
        /// <summary>No active partition could be read; a failure: retry.</summary>
        NoActivePartition = 1,
        /// <summary>The number of the active partition is unknown; a failure: retry.</summary>
        UnknownActivePartition = 2,
        /// <summary>The recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a
        /// failure: give-up, what a partition must be and hold: docs/recovery-partitions.md.</summary>
        NoRecoveryFiles = 3,
        /// <summary>The record could not be written; a failure: retry.</summary>
        RecordNotWritten = 4,
        /// <summary>The flag could not be set; setting the former one again was tried; a failure: undo, if
        /// GetActivePartitionNumber no longer answers the number from before, call ClearActive, then SetActive
        /// with it.</summary>
        FlagNotSet = 5
    }

    /// <summary>What came of SetSystemActive.</summary>
    public enum SetSystemActiveResult
    {
        /// <summary>Done, or there was nothing to do.</summary>
        Done = 0,
        /// <summary>No active partition could be read; a failure: retry.</summary>
        NoActivePartition = 1,
        /// <summary>The number of the active partition is unknown; a failure: retry.</summary>
        UnknownActivePartition = 2,
        /// <summary>The recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a
        /// failure: give-up, what a partition must be and hold: docs/recovery-partitions.md.</summary>
        NoRecoveryFiles = 3,
        /// <summary>The flag could not be set; a failure: undo, if GetActivePartitionNumber no longer answers the
        /// number from before, call ClearActive, then SetActive with it.</summary>
        FlagNotSet = 4,
        /// <summary>The record could not be deleted; a failure: go-on, the PC starts from the partition that was
        /// asked for; SystemVolume.ini stays, and asking again deletes it.</summary>
        RecordNotDeleted = 5
    }

    /// <summary>What came of SetPOneActive.</summary>
    public enum SetPOneActiveResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>No active partition could be read; a failure: retry.</summary>
        NoActivePartition = 1,
        /// <summary>The number of the active partition is unknown; a failure: retry.</summary>
        UnknownActivePartition = 2,
        /// <summary>The recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a
        /// failure: give-up, what a partition must be and hold: docs/recovery-partitions.md.</summary>
        NoRecoveryFiles = 3,
        /// <summary>The record could not be written; a failure: retry.</summary>
        RecordNotWritten = 4,
        /// <summary>The flag could not be set; setting the former one again was tried; a failure: undo, if
        /// GetActivePartitionNumber no longer answers the number from before, call ClearActive, then SetActive
        /// with it.</summary>
        FlagNotSet = 5,
        /// <summary>The record could not be dropped; a failure: go-on, the PC starts from the partition that was
        /// asked for; SystemVolume.ini stays, and means what none would.</summary>
        RecordNotDropped = 6
    }

    /// <summary>What came of SetPTwoActive.</summary>
    public enum SetPTwoActiveResult
    {
        /// <summary>Done.</summary>
        Done = 0,
        /// <summary>The flag could not be set; setting partition 1 again was tried; a failure: undo, if
        /// GetActivePartitionNumber no longer answers the number from before, call ClearActive, then SetActive
        /// with it.</summary>
        FlagNotSet = 1,
        /// <summary>The recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a
        /// failure: go-on, the PC starts from partition 2; SystemVolume.ini was not looked for.</summary>
        NoRecoveryFiles = 2,
        /// <summary>The record could not be deleted; a failure: go-on, the PC starts from the partition that was
        /// asked for; SystemVolume.ini stays, and asking again deletes it.</summary>
        RecordNotDeleted = 3
    }

    /// <summary>The place of a volume to which the installed Windows assigns a letter.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct LetterPlace
    {
        private readonly int disk;
        private readonly int partition;
        private readonly ushort letter;

        /// <summary>The disk in the running system; 255 if it could not be read.</summary>
        public int Disk { get { return disk; } }

        /// <summary>The partition; 0 if it could not be read.</summary>
        public int Partition { get { return partition; } }

        /// <summary>The installed Windows' letter.</summary>
        public char Letter { get { return (char)letter; } }
    }

    /// <summary>A result together with the records that came with it.</summary>
    public sealed class DriveLetters
    {
        internal DriveLetters(GetWinDriveLettersResult result, LetterPlace[] records)
        {
            Result = result;
            Records = records;
        }

        /// <summary>What came of the call.</summary>
        public GetWinDriveLettersResult Result { get; private set; }

        /// <summary>A record for each letter.</summary>
        public LetterPlace[] Records { get; private set; }
    }

    /// <summary>What went wrong, or not, in a call.</summary>
    public sealed class Problem
    {
        internal Problem(NativeProblem problem)
        {
            Code = (ProblemCode)problem.Code;
            Result = problem.HasResult != 0 ? problem.Result : (int?)null;
            Operation = problem.Operation;
            Words = problem.Words;
            Record = problem.Record;
        }

        /// <summary>What became of the call.</summary>
        public ProblemCode Code { get; private set; }

        /// <summary>The result, as a number; null if the operation was not made or has none.</summary>
        public int? Result { get; private set; }

        /// <summary>The operation, "SetRcvprtActive"; empty if it was none.</summary>
        public string Operation { get; private set; }

        /// <summary>The problem, or the meaning of the result.</summary>
        public string Words { get; private set; }

        /// <summary>The last record of an error that the operation wrote; empty without one.</summary>
        public string Record { get; private set; }

        /// <summary>The operation and the words.</summary>
        public override string ToString()
        {
            return Operation.Length > 0 ? Operation + ": " + Words : Words;
        }
    }

    /// <summary>A call that could not be made: the library was used in a way that it does not allow, or it could not be
    /// opened. Never thrown for an operation that failed.</summary>
    public sealed class KestovaException : InvalidOperationException
    {
        internal KestovaException(Problem problem) : base(problem.ToString())
        {
            Problem = problem;
        }

        /// <summary>Why the call could not be made.</summary>
        public Problem Problem { get; private set; }
    }

    /// <summary>The severity of a record of the log.</summary>
    public enum LogLevel
    {
        /// <summary>An error.</summary>
        Error = 1,
        /// <summary>A trace.</summary>
        Trace = 4
    }

    /// <summary>A record of the log.</summary>
    public sealed class LogEventArgs : EventArgs
    {
        internal LogEventArgs(int level, string text)
        {
            Level = (LogLevel)level;
            Text = text;
        }

        /// <summary>Its severity.</summary>
        public LogLevel Level { get; private set; }

        /// <summary>Its text.</summary>
        public string Text { get; private set; }
    }

    /// <summary>The recovery partitions of this PC, on Linux of an emulated one. Call <c>Initialize</c>
    /// first.</summary>
    /// <remarks>An object may be used from any thread; its calls are made one after the other, and the caller waits.
    /// Dispose of it in the end: that waits for the end of a call that nobody waits for; while others wait for calls,
    /// the last of these closes it. A letter is null where there is none. The process must be an administrator's,
    /// elevated.</remarks>
    public sealed class Manager : IDisposable
    {
        private const ushort NoLetter = '0';
        private const int TextRoom = 33;
        private const int PlacesRoom = 26;
        private const uint Interface = 1;

        private readonly NativeHandle handle;
        private volatile bool isDisposed;

        /// <summary>Opens the library.</summary>
        /// <exception cref="KestovaException">It could not be opened: <c>Problem</c> says why.</exception>
        /// <exception cref="DllNotFoundException">KestovaC.dll was not found, or is of the other bitness.</exception>
        /// <exception cref="NotSupportedException">The library is older than this file.</exception>
        public Manager()
        {
            if (Native.kestova_interface() < Interface)
                throw new NotSupportedException("The library KestovaC is older than Kestova.cs.");
            handle = Native.kestova_open();
            if (handle.IsInvalid)
                throw new KestovaException(ThreadProblem);
            handle.StartLog();
        }

        /// <summary>Closes the library. A call after that throws <c>ObjectDisposedException</c>.</summary>
        public void Dispose()
        {
            isDisposed = true;
            handle.Dispose();
        }

        /// <summary>Receives the records of this object, on a thread of its own, during an operation. The receiver must
        /// return soon and must not call any object; an exception of it is lost. An object that is not disposed of
        /// stays in memory as long as a receiver refers to it.</summary>
        public event EventHandler<LogEventArgs> Logged
        {
            add { handle.Log.Written += value; }
            remove { handle.Log.Written -= value; }
        }

        /// <summary>Of the last operation that has ended on this object, also one that nobody waited for.</summary>
        public Problem LastProblem
        {
            get
            {
                NativeProblem problem = NativeProblem.Empty();
                Native.kestova_last_problem(Open, ref problem);
                return new Problem(problem);
            }
        }

        /// <summary>Of the last call of this thread, on whatever object.</summary>
        public static Problem ThreadProblem
        {
            get
            {
                NativeProblem problem = NativeProblem.Empty();
                Native.kestova_last_problem(IntPtr.Zero, ref problem);
                return new Problem(problem);
            }
        }

        /// <summary>A result in words.</summary>
        /// <param name="operation">The operation, "SetRcvprtActive".</param>
        /// <param name="result">Its result, as a number.</param>
        /// <returns>The words; null if there is no such operation, or no such result of it.</returns>
        public static string Describe(string operation, int result)
        {
            uint length = Native.kestova_describe(operation, result, null, 0);
            if (length == 0)
                return null;
            var buffer = new char[length + 1];
            Native.kestova_describe(operation, result, buffer, length + 1);
            return new string(buffer, 0, (int)length);
        }

        /// <summary>The version of the library.</summary>
        public static string Version
        {
            get { return Marshal.PtrToStringAnsi(Native.kestova_version()); }
        }

        /// <summary>From now on callers wait at most so long for a call, their turn included; zero, as at the start:
        /// without limit. A call that was not waited for answers as after a failure, <c>ThreadProblem.Code</c> is
        /// <c>Stopped</c>, and it runs on.</summary>
        /// <param name="limit">How long.</param>
        public void SetWait(TimeSpan limit)
        {
            Native.kestova_set_wait(Open, checked((uint)limit.TotalMilliseconds));
        }

        /// <summary>Ends the waiting of everyone who waits on this object now; the call runs on.</summary>
        public void StopWaiting()
        {
            Native.kestova_stop_waiting(Open);
        }

        /// <summary>Waits for the end of a call that nobody waits for.</summary>
        /// <param name="limit">How long.</param>
        /// <returns>true: it has ended, and <c>LastProblem</c> has its result; false: it still runs.</returns>
        public bool WaitUntilFree(TimeSpan limit)
        {
            return Native.kestova_wait(Open, checked((uint)limit.TotalMilliseconds)) != 0;
        }

        /// <summary>Prepares COM security and loads the Virtual Disk Service. Takes up to 20 attempts to load the
        /// service, one second apart.</summary>
        /// <param name="reserved">Without effect.</param>
        /// <returns>What came of it.</returns>
        public InitializeResult Initialize(bool reserved = false)
        {
            var result = Native.kestova_initialize(Open, reserved ? 1 : 0);
            ThrowMisuse();
            return (InitializeResult)result;
        }

        /// <summary><c>Initialize</c> on a thread of its own.</summary>
        /// <param name="cancellation">Ends the waiting, not the call, of which <c>WaitUntilFree</c> and
        /// <c>LastProblem</c> tell the rest.</param>
        /// <returns>What came of it; cancelled if the waiting was ended.</returns>
        public Task<InitializeResult> InitializeAsync(
            CancellationToken cancellation = default(CancellationToken))
        {
            return Start(() => Initialize(), cancellation);
        }

        /// <summary>Which disk is the first internal one.</summary>
        /// <returns>The number of the disk; null: there is none, or it could not be told.</returns>
        public int? GetFirstInternalDriveNumber()
        {
            var result = Native.kestova_get_first_internal_drive_number(Open);
            ThrowMisuse();
            return NumberOf(result);
        }

        /// <summary>The partition style of the first internal disk.</summary>
        /// <param name="style">The style.</param>
        /// <returns>What came of it.</returns>
        public GetDiskStyleResult GetDiskStyle(out DiskStyle style)
        {
            int styleKept = 0;
            var result = Native.kestova_get_disk_style(Open, ref styleKept);
            ThrowMisuse();
            style = (DiskStyle)styleKept;
            return (GetDiskStyleResult)result;
        }

        /// <summary>The layout of the first internal disk.</summary>
        /// <param name="type">The layout.</param>
        /// <returns>What came of it.</returns>
        public GetCurrentDiskTypeResult GetCurrentDiskType(out DiskType type)
        {
            int typeKept = 0;
            var result = Native.kestova_get_current_disk_type(Open, ref typeKept);
            ThrowMisuse();
            type = (DiskType)typeKept;
            return (GetCurrentDiskTypeResult)result;
        }

        /// <summary>Always 0: no disk counts as dynamic.</summary>
        /// <returns>false: no.</returns>
        public bool IsDynamic()
        {
            var result = Native.kestova_is_dynamic(Open);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>Whether the firmware is UEFI.</summary>
        /// <returns>What came of it.</returns>
        public IsEFIBootSystemResult IsEFIBootSystem()
        {
            var result = Native.kestova_is_efi_boot_system(Open);
            ThrowMisuse();
            return (IsEFIBootSystemResult)result;
        }

        /// <summary>The letter of a partition.</summary>
        /// <param name="disk">Number of a disk, from 0.</param>
        /// <param name="partition">Number of a partition, from 1.</param>
        /// <returns>Its letter; null: it has none.</returns>
        public char? GetDriveLetter(int disk, int partition)
        {
            var result = Native.kestova_get_drive_letter(Open, disk, partition);
            ThrowMisuse();
            return LetterOf(result);
        }

        /// <summary>Whether a partition is not for the user's eyes.</summary>
        /// <param name="disk">Number of a disk, from 0.</param>
        /// <param name="partition">Number of a partition, from 1.</param>
        /// <returns>true: yes; false: no, or it could not be told.</returns>
        public bool IsNeedHidePartition(int disk, int partition)
        {
            var result = Native.kestova_is_need_hide_partition(Open, disk, partition);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>Whether a partition is the BIOS's hibernation partition.</summary>
        /// <param name="disk">Number of a disk, from 0.</param>
        /// <param name="partition">Number of a partition, from 1.</param>
        /// <returns>true: yes; false: no, or it could not be told.</returns>
        public bool IsBIOSHibernationPartition(int disk, int partition)
        {
            var result = Native.kestova_is_bios_hibernation_partition(Open, disk, partition);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>Makes an MBR partition of the first internal disk the BIOS's hibernation partition. Changes
        /// the PC.</summary>
        /// <param name="partition">Number of a partition, from 1.</param>
        /// <returns>What came of it.</returns>
        public SetBIOSHibernationPartitionIDResult SetBIOSHibernationPartitionID(int partition)
        {
            var result = Native.kestova_set_bios_hibernation_partition_id(Open, partition);
            ThrowMisuse();
            return (SetBIOSHibernationPartitionIDResult)result;
        }

        /// <summary>Which partition of the first internal disk is active.</summary>
        /// <returns>The number of the partition; null: there is none, or it could not be told.</returns>
        public int? GetActivePartitionNumber()
        {
            var result = Native.kestova_get_active_partition_number(Open);
            ThrowMisuse();
            return NumberOf(result);
        }

        /// <summary>Sets the active flag of an MBR partition of the first internal disk; clears no other flag
        /// itself. Changes the PC.</summary>
        /// <param name="partition">Number of a partition, from 1.</param>
        /// <returns>What came of it.</returns>
        public SetActiveResult SetActive(int partition)
        {
            var result = Native.kestova_set_active(Open, partition);
            ThrowMisuse();
            return (SetActiveResult)result;
        }

        /// <summary>Clears every active flag of the first internal disk. Changes the PC.</summary>
        /// <returns>What came of it.</returns>
        public ClearActiveResult ClearActive()
        {
            var result = Native.kestova_clear_active(Open);
            ThrowMisuse();
            return (ClearActiveResult)result;
        }

        /// <summary>The letter of the first volume labelled "Factory".</summary>
        /// <param name="letter">Its letter; null: there is none.</param>
        /// <returns>What came of it.</returns>
        public GetFactoryPrtDriveLetterResult GetFactoryPrtDriveLetter(out char? letter)
        {
            ushort letterKept = NoLetter;
            var result = Native.kestova_get_factory_prt_drive_letter(Open, ref letterKept);
            ThrowMisuse();
            letter = LetterOf(letterKept);
            return (GetFactoryPrtDriveLetterResult)result;
        }

        /// <summary>The letter of the first recovery disc.</summary>
        /// <returns>Its letter; null: there is none.</returns>
        public char? GetRCVDISC()
        {
            var result = Native.kestova_get_rcvdisc(Open);
            ThrowMisuse();
            return LetterOf(result);
        }

        /// <summary>The letter of the first recovery USB flash drive.</summary>
        /// <returns>Its letter; null: there is none.</returns>
        public char? GetRCVUFD()
        {
            var result = Native.kestova_get_rcvufd(Open);
            ThrowMisuse();
            return LetterOf(result);
        }

        /// <summary>Whether a fixed drive holds the maker's bootable Windows RE files.</summary>
        /// <param name="letter">A drive letter.</param>
        /// <returns>true: yes; false: no.</returns>
        public bool IsWindowsRE(char letter)
        {
            var result = Native.kestova_is_windows_re(Open, letter);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>Whether a fixed drive holds an installed Windows, or is encrypted and so taken for
        /// one.</summary>
        /// <param name="letter">A drive letter.</param>
        /// <returns>true: yes; false: no.</returns>
        public bool IsVistaOS(char letter)
        {
            var result = Native.kestova_is_vista_os(Open, letter);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>Whether the second internal disk bears the cache partition.</summary>
        /// <returns>true: yes; false: no, or it could not be told.</returns>
        public bool IsCachePartitionForExpCacheExist()
        {
            var result = Native.kestova_is_cache_partition_for_exp_cache_exist(Open);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>Gives the maker's boot partition, number 1, a letter. Changes the PC.</summary>
        /// <param name="letter">The letter of the partition; null: none.</param>
        /// <returns>What came of it.</returns>
        public ActiveOrvoBootPartitionResult ActiveOrvoBootPartition(out char? letter)
        {
            ushort letterKept = NoLetter;
            var result = Native.kestova_active_orvo_boot_partition(Open, ref letterKept);
            ThrowMisuse();
            letter = LetterOf(letterKept);
            return (ActiveOrvoBootPartitionResult)result;
        }

        /// <summary>Takes the letter of partition 1, whoever gave it. Changes the PC.</summary>
        /// <returns>What came of it.</returns>
        public DisableOrvoBootPartitionResult DisableOrvoBootPartition()
        {
            var result = Native.kestova_disable_orvo_boot_partition(Open);
            ThrowMisuse();
            return (DisableOrvoBootPartitionResult)result;
        }

        /// <summary>Gives the EFI system partition, number 3, a letter. Changes the PC.</summary>
        /// <param name="letter">The letter of the partition; null: none.</param>
        /// <returns>What came of it.</returns>
        public ActiveGPTSystemPartitionResult ActiveGPTSystemPartition(out char? letter)
        {
            ushort letterKept = NoLetter;
            var result = Native.kestova_active_gpt_system_partition(Open, ref letterKept);
            ThrowMisuse();
            letter = LetterOf(letterKept);
            return (ActiveGPTSystemPartitionResult)result;
        }

        /// <summary>Takes the letter of partition 3, whoever gave it. Changes the PC.</summary>
        /// <returns>What came of it.</returns>
        public DisableGPTSystemPartitionResult DisableGPTSystemPartition()
        {
            var result = Native.kestova_disable_gpt_system_partition(Open);
            ThrowMisuse();
            return (DisableGPTSystemPartitionResult)result;
        }

        /// <summary>Gives the recovery partition of a GPT disk a letter. Changes the PC.</summary>
        /// <param name="letter">Its letter; null: there is no recovery partition, or no letter for it.</param>
        /// <returns>What came of it.</returns>
        public AssignRecoveryPartitionResult AssignRecoveryPartition(out char? letter)
        {
            ushort letterKept = NoLetter;
            var result = Native.kestova_assign_recovery_partition(Open, ref letterKept);
            ThrowMisuse();
            letter = LetterOf(letterKept);
            return (AssignRecoveryPartitionResult)result;
        }

        /// <summary>Gives the Windows RE partition, number 2, a letter. Changes the PC.</summary>
        /// <param name="letter">Its letter; null: there is no Windows RE partition, or no letter for it.</param>
        /// <returns>What came of it.</returns>
        public AssignWinREPartitionResult AssignWinREPartition(out char? letter)
        {
            ushort letterKept = NoLetter;
            var result = Native.kestova_assign_win_re_partition(Open, ref letterKept);
            ThrowMisuse();
            letter = LetterOf(letterKept);
            return (AssignWinREPartitionResult)result;
        }

        /// <summary>Takes the letter of the partition that AssignRecoveryPartition last found. Changes the
        /// PC.</summary>
        public void RemoveRecoveryPartition()
        {
            Native.kestova_remove_recovery_partition(Open);
            ThrowMisuse();
        }

        /// <summary>Takes the letter of the partition that AssignWinREPartition last found. Changes the
        /// PC.</summary>
        public void RemoveWinREPartition()
        {
            Native.kestova_remove_win_re_partition(Open);
            ThrowMisuse();
        }

        /// <summary>Whether there is a recovery partition; it keeps the letter that it is given. Changes the
        /// PC.</summary>
        /// <returns>true: yes; false: no, or it could not be given a letter.</returns>
        public bool IsExistRcvprt()
        {
            var result = Native.kestova_is_exist_rcvprt(Open);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>Whether BitLocker can be asked.</summary>
        /// <returns>true: it can, even if it encrypts nothing; false: it cannot.</returns>
        public bool IsExistEncryptVolume()
        {
            var result = Native.kestova_is_exist_encrypt_volume(Open);
            ThrowMisuse();
            return result != 0;
        }

        /// <summary>The letter of the only encrypted volume.</summary>
        /// <returns>Its letter; null: there are none, or several, or BitLocker cannot be asked; '\0': it has no
        /// letter.</returns>
        public char? GetEncryptVolume()
        {
            var result = Native.kestova_get_encrypt_volume(Open);
            ThrowMisuse();
            return LetterOf(result);
        }

        /// <summary>The letters of all encrypted volumes.</summary>
        /// <param name="buffer">The letters.</param>
        /// <param name="size">Characters that the buffer has room for, with the terminator.</param>
        /// <returns>What came of it.</returns>
        public GetAllEncryptVolumeResult GetAllEncryptVolume(out string buffer, int size = TextRoom)
        {
            char[] bufferKept = new char[Room(size)];
            var result = Native.kestova_get_all_encrypt_volume(Open, bufferKept, (uint)size);
            ThrowMisuse();
            buffer = TextOf(bufferKept);
            return (GetAllEncryptVolumeResult)result;
        }

        /// <summary>Where the EFI system partition is; its letter is never looked up.</summary>
        /// <param name="disk">Its disk; null: none.</param>
        /// <param name="partition">Its partition; null: none.</param>
        /// <param name="letter">Its letter; null: none.</param>
        /// <returns>What came of it.</returns>
        public GetBitLockerSystemInfoResult GetBitLockerSystemInfo(out int? disk, out int? partition, out char? letter)
        {
            int diskKept = -1;
            int partitionKept = -1;
            ushort letterKept = NoLetter;
            var result = Native.kestova_get_bit_locker_system_info(Open, ref diskKept, ref partitionKept, ref
                letterKept);
            ThrowMisuse();
            disk = NumberOf(diskKept);
            partition = NumberOf(partitionKept);
            letter = LetterOf(letterKept);
            return (GetBitLockerSystemInfoResult)result;
        }

        /// <summary>Where the installed Windows is, on a GPT disk with an EFI system partition.</summary>
        /// <param name="disk">Its disk; null: none.</param>
        /// <param name="partition">Its partition; null: none.</param>
        /// <param name="letter">Its letter; null: none.</param>
        /// <returns>What came of it.</returns>
        public GetVistaOSInfoResult GetVistaOSInfo(out int? disk, out int? partition, out char? letter)
        {
            int diskKept = -1;
            int partitionKept = -1;
            ushort letterKept = NoLetter;
            var result = Native.kestova_get_vista_os_info(Open, ref diskKept, ref partitionKept, ref letterKept);
            ThrowMisuse();
            disk = NumberOf(diskKept);
            partition = NumberOf(partitionKept);
            letter = LetterOf(letterKept);
            return (GetVistaOSInfoResult)result;
        }

        /// <summary>Which disk and partition each letter of the installed Windows stands for. Takes up to 61.8
        /// seconds for the program reg.</summary>
        /// <param name="records">A record for each letter: iDiskNum, iPartNum, cDriveLetter.</param>
        /// <param name="count">Records that there is room for.</param>
        /// <returns>What came of it.</returns>
        public GetWinDriveLettersResult GetWinDriveLetters(out LetterPlace[] records, int count = PlacesRoom)
        {
            LetterPlace[] recordsKept = new LetterPlace[Room(count)];
            var result = Native.kestova_get_win_drive_letters(Open, recordsKept, count);
            ThrowMisuse();
            records = Filled(recordsKept);
            return (GetWinDriveLettersResult)result;
        }

        /// <summary><c>GetWinDriveLetters</c> on a thread of its own.</summary>
        /// <param name="cancellation">Ends the waiting, not the call, of which <c>WaitUntilFree</c> and
        /// <c>LastProblem</c> tell the rest.</param>
        /// <returns>What came of it; cancelled if the waiting was ended.</returns>
        public Task<DriveLetters> GetWinDriveLettersAsync(
            CancellationToken cancellation = default(CancellationToken))
        {
            return Start(delegate
            {
                LetterPlace[] records;
                GetWinDriveLettersResult result = GetWinDriveLetters(out records);
                return new DriveLetters(result, records);
            }, cancellation);
        }

        /// <summary>Makes the recovery partition active and records the partition that was. Changes the
        /// PC.</summary>
        /// <returns>What came of it.</returns>
        public SetRcvprtActiveResult SetRcvprtActive()
        {
            var result = Native.kestova_set_rcvprt_active(Open);
            ThrowMisuse();
            return (SetRcvprtActiveResult)result;
        }

        /// <summary><c>SetRcvprtActive</c> on a thread of its own.</summary>
        /// <param name="cancellation">Ends the waiting, not the call, of which <c>WaitUntilFree</c> and
        /// <c>LastProblem</c> tell the rest.</param>
        /// <returns>What came of it; cancelled if the waiting was ended.</returns>
        public Task<SetRcvprtActiveResult> SetRcvprtActiveAsync(
            CancellationToken cancellation = default(CancellationToken))
        {
            return Start(() => SetRcvprtActive(), cancellation);
        }

        /// <summary>Makes the recorded partition active again, 2 without a usable record. Changes the
        /// PC.</summary>
        /// <returns>What came of it.</returns>
        public SetSystemActiveResult SetSystemActive()
        {
            var result = Native.kestova_set_system_active(Open);
            ThrowMisuse();
            return (SetSystemActiveResult)result;
        }

        /// <summary><c>SetSystemActive</c> on a thread of its own.</summary>
        /// <param name="cancellation">Ends the waiting, not the call, of which <c>WaitUntilFree</c> and
        /// <c>LastProblem</c> tell the rest.</param>
        /// <returns>What came of it; cancelled if the waiting was ended.</returns>
        public Task<SetSystemActiveResult> SetSystemActiveAsync(
            CancellationToken cancellation = default(CancellationToken))
        {
            return Start(() => SetSystemActive(), cancellation);
        }

        /// <summary>As SetRcvprtActive, and drops a record that says 2 or nothing usable. Changes the
        /// PC.</summary>
        /// <returns>What came of it.</returns>
        public SetPOneActiveResult SetPOneActive()
        {
            var result = Native.kestova_set_p_one_active(Open);
            ThrowMisuse();
            return (SetPOneActiveResult)result;
        }

        /// <summary><c>SetPOneActive</c> on a thread of its own.</summary>
        /// <param name="cancellation">Ends the waiting, not the call, of which <c>WaitUntilFree</c> and
        /// <c>LastProblem</c> tell the rest.</param>
        /// <returns>What came of it; cancelled if the waiting was ended.</returns>
        public Task<SetPOneActiveResult> SetPOneActiveAsync(
            CancellationToken cancellation = default(CancellationToken))
        {
            return Start(() => SetPOneActive(), cancellation);
        }

        /// <summary>Makes partition 2 active and deletes the record. Changes the PC.</summary>
        /// <returns>What came of it.</returns>
        public SetPTwoActiveResult SetPTwoActive()
        {
            var result = Native.kestova_set_p_two_active(Open);
            ThrowMisuse();
            return (SetPTwoActiveResult)result;
        }

        /// <summary><c>SetPTwoActive</c> on a thread of its own.</summary>
        /// <param name="cancellation">Ends the waiting, not the call, of which <c>WaitUntilFree</c> and
        /// <c>LastProblem</c> tell the rest.</param>
        /// <returns>What came of it; cancelled if the waiting was ended.</returns>
        public Task<SetPTwoActiveResult> SetPTwoActiveAsync(
            CancellationToken cancellation = default(CancellationToken))
        {
            return Start(() => SetPTwoActive(), cancellation);
        }

        // The task is cancelled at once; the thread that makes the call is released by the end of its waiting.
        private Task<T> Start<T>(Func<T> call, CancellationToken cancellation)
        {
            var source = new TaskCompletionSource<T>();
            CancellationTokenRegistration registration = cancellation.Register(delegate
            {
                if (source.TrySetCanceled())
                    Release();
            });
            Task.Factory.StartNew(delegate
            {
                try
                {
                    if (!source.Task.IsCompleted)
                        source.TrySetResult(call());
                }
                catch (Exception exception)
                {
                    source.TrySetException(exception);
                }
                finally
                {
                    registration.Dispose();
                }
            }, CancellationToken.None, TaskCreationOptions.LongRunning, TaskScheduler.Default);
            return source.Task;
        }

        private void Release()
        {
            try
            {
                StopWaiting();
            }
            catch (ObjectDisposedException)
            {
                // Then the call ends with the object.
            }
        }

        // A handle stays open as long as a call runs on it, also after Dispose.
        private NativeHandle Open
        {
            get
            {
                if (isDisposed)
                    throw new ObjectDisposedException("Manager");
                return handle;
            }
        }

        // What the library refuses because of how it was called. Of other problems the result tells.
        private static void ThrowMisuse()
        {
            Problem problem = ThreadProblem;
            switch (problem.Code)
            {
                case ProblemCode.Handle:
                case ProblemCode.Argument:
                case ProblemCode.Busy:
                case ProblemCode.Pc:
                    throw new KestovaException(problem);
            }
        }

        private static char? LetterOf(ushort letter)
        {
            return letter == NoLetter ? (char?)null : (char)letter;
        }

        private static int? NumberOf(int number)
        {
            return number == -1 ? (int?)null : number;
        }

        private static string TextOf(char[] buffer)
        {
            int end = Array.IndexOf(buffer, '\0');
            return new string(buffer, 0, end < 0 ? buffer.Length : end);
        }

        private static LetterPlace[] Filled(LetterPlace[] records)
        {
            return Array.FindAll(records, record => record.Letter != '\0');
        }

        // A negative room is left to the library to refuse.
        private static int Room(int wanted)
        {
            return Math.Max(wanted, 0);
        }
    }

    /// <summary>An emulated PC, for tests of applications; on Linux only. One at a time in a process, to be opened
    /// before the first <c>Manager</c> and closed after the last.</summary>
    public sealed class EmulatedPc : IDisposable
    {
        private IntPtr pc;

        /// <summary>Opens a PC.</summary>
        /// <param name="nameOrFile">A machine that comes with the library, "factory-mbr", or a file that describes
        /// one.</param>
        /// <exception cref="KestovaException">It could not be opened: <c>Problem</c> says why.</exception>
        public EmulatedPc(string nameOrFile)
        {
            pc = Native.kestova_open_pc(nameOrFile);
            if (pc == IntPtr.Zero)
                throw new KestovaException(Manager.ThreadProblem);
        }

        /// <summary>Closes the PC.</summary>
        /// <exception cref="KestovaException">A <c>Manager</c> is still open.</exception>
        public void Dispose()
        {
            if (pc == IntPtr.Zero)
                return;
            ThrowUnless(Native.kestova_close_pc(pc));
            pc = IntPtr.Zero;
        }

        /// <summary>From now on platform calls fail.</summary>
        /// <param name="fault">"NAME[#N][+]=CODE", as "IVdsAdvancedDisk::ChangeAttributes#1=E_FAIL": the Nth call of
        /// that name from now, with "+" all later ones too, without "#N" every call; null: none fails any more.</param>
        /// <exception cref="KestovaException">The text is no fault.</exception>
        public void Fail(string fault)
        {
            ThrowUnless(Native.kestova_fail(pc, fault));
        }

        /// <summary>The next platform call or record since the PC was opened.</summary>
        /// <returns>A line of text; null at the end.</returns>
        public string NextTrace()
        {
            return Line(Native.kestova_trace_next);
        }

        /// <summary>What the platform has handed out and not got back.</summary>
        /// <returns>Words; null if there is nothing.</returns>
        public string Outstanding()
        {
            return Line(Native.kestova_outstanding);
        }

        /// <summary>Writes the PC as it is now to a file that describes it, replacing one.</summary>
        /// <param name="file">The file.</param>
        /// <exception cref="KestovaException">It could not be written.</exception>
        public void Save(string file)
        {
            ThrowUnless(Native.kestova_save(pc, file));
        }

        private string Line(Func<IntPtr, byte[], uint, uint> ask)
        {
            uint length = ask(pc, null, 0);
            if (length == 0)
                return null;
            var buffer = new byte[length + 1];
            ask(pc, buffer, length + 1);
            return Encoding.UTF8.GetString(buffer, 0, (int)length);
        }

        private static void ThrowUnless(int done)
        {
            if (done == 0)
                throw new KestovaException(Manager.ThreadProblem);
        }
    }

    // The receivers of a log. It does not refer to its Manager, so that this can be collected.
    internal sealed class LogSource
    {
        internal event EventHandler<LogEventArgs> Written;

        // Called on a thread of the library, into which no exception may go.
        internal void Receive(IntPtr context, int level, IntPtr text)
        {
            EventHandler<LogEventArgs> receivers = Written;
            if (receivers == null)
                return;
            try
            {
                receivers(this, new LogEventArgs(level, Marshal.PtrToStringUni(text)));
            }
            catch (Exception)
            {
            }
        }
    }

    // Keeps what the library calls as long as the library can call it.
    internal sealed class NativeHandle : SafeHandle
    {
        internal readonly LogSource Log = new LogSource();
        private GCHandle receiver;

        public NativeHandle() : base(IntPtr.Zero, true)
        {
        }

        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }

        internal void StartLog()
        {
            LogFunction function = Log.Receive;
            receiver = GCHandle.Alloc(function);
            Native.kestova_set_log(this, function, IntPtr.Zero);
        }

        protected override bool ReleaseHandle()
        {
            bool isClosed = Native.kestova_close(handle) != 0;
            if (isClosed && receiver.IsAllocated)
                receiver.Free();
            return isClosed;
        }
    }

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate void LogFunction(IntPtr context, int level, IntPtr text);

    [StructLayout(LayoutKind.Sequential, CharSet = CharSet.Unicode)]
    internal struct NativeProblem
    {
        internal uint Size;
        internal int Code;
        internal int HasResult;
        internal int Result;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = 64)]
        internal string Operation;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = 512)]
        internal string Words;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = 1024)]
        internal string Record;

        internal static NativeProblem Empty()
        {
            var problem = new NativeProblem { Operation = "", Words = "", Record = "" };
            problem.Size = (uint)Marshal.SizeOf(problem);
            return problem;
        }
    }

    // The functions of kestova_c.h, by their names there. On Linux Kestova.dll.config says which file the library is.
    internal static class Native
    {
        private const string Library = "KestovaC";
        private const CallingConvention Convention = CallingConvention.Cdecl;

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern NativeHandle kestova_open();

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_close(IntPtr handle);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_last_problem(NativeHandle handle, ref NativeProblem problem);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_last_problem(IntPtr handle, ref NativeProblem problem);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern uint kestova_describe([MarshalAs(UnmanagedType.LPStr)] string operation, int result,
                                                     [In, Out] char[] buffer, uint size);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_set_wait(NativeHandle handle, uint milliseconds);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_stop_waiting(NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_wait(NativeHandle handle, uint milliseconds);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_set_log(NativeHandle handle, LogFunction function, IntPtr context);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern IntPtr kestova_version();

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern uint kestova_interface();

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_initialize(
            NativeHandle handle, int reserved);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_first_internal_drive_number(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_disk_style(
            NativeHandle handle, ref int style);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_current_disk_type(
            NativeHandle handle, ref int type);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_dynamic(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_efi_boot_system(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern ushort kestova_get_drive_letter(
            NativeHandle handle, int disk, int partition);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_need_hide_partition(
            NativeHandle handle, int disk, int partition);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_bios_hibernation_partition(
            NativeHandle handle, int disk, int partition);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_set_bios_hibernation_partition_id(
            NativeHandle handle, int partition);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_active_partition_number(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_set_active(
            NativeHandle handle, int partition);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_clear_active(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_factory_prt_drive_letter(
            NativeHandle handle, ref ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern ushort kestova_get_rcvdisc(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern ushort kestova_get_rcvufd(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_windows_re(
            NativeHandle handle, ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_vista_os(
            NativeHandle handle, ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_cache_partition_for_exp_cache_exist(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_active_orvo_boot_partition(
            NativeHandle handle, ref ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_disable_orvo_boot_partition(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_active_gpt_system_partition(
            NativeHandle handle, ref ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_disable_gpt_system_partition(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_assign_recovery_partition(
            NativeHandle handle, ref ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_assign_win_re_partition(
            NativeHandle handle, ref ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern void kestova_remove_recovery_partition(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern void kestova_remove_win_re_partition(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_exist_rcvprt(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_is_exist_encrypt_volume(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern ushort kestova_get_encrypt_volume(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_all_encrypt_volume(
            NativeHandle handle, [In, Out] char[] buffer, uint size);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_bit_locker_system_info(
            NativeHandle handle, ref int disk, ref int partition, ref ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_vista_os_info(
            NativeHandle handle, ref int disk, ref int partition, ref ushort letter);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_get_win_drive_letters(
            NativeHandle handle, [In, Out] LetterPlace[] records, int count);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_set_rcvprt_active(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_set_system_active(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_set_p_one_active(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention, CharSet = CharSet.Unicode)]
        internal static extern int kestova_set_p_two_active(
            NativeHandle handle);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern IntPtr kestova_open_pc([MarshalAs(UnmanagedType.LPStr)] string nameOrFile);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_close_pc(IntPtr pc);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_fail(IntPtr pc, [MarshalAs(UnmanagedType.LPStr)] string fault);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern uint kestova_trace_next(IntPtr pc, [In, Out] byte[] buffer, uint size);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern uint kestova_outstanding(IntPtr pc, [In, Out] byte[] buffer, uint size);

        [DllImport(Library, CallingConvention = Convention)]
        internal static extern int kestova_save(IntPtr pc, [MarshalAs(UnmanagedType.LPStr)] string file);
    }
}

// A recovery application on one page: it finds the recovery partition, reads a file there through a drive letter,
// removes the letter, and makes the PC start from that partition next time.
//
//     Recovery          this PC (Windows)
//     Recovery PC       elsewhere: a description, or the name of a PC that comes with the library
//
// The exit status is the code of the switch, or 9 if there is no recovery partition or its file cannot be read. An
// emulated PC has no files that a program could read: there the file is passed over.
using System;
using System.IO;
using Kestova;

internal static class Recovery
{
    private const int NothingToRecoverFrom = 9;

    private static int Main(string[] words)
    {
        if (words.Length == 0)
            return Recover(false);
        using (new EmulatedPc(words[0]))
            return Recover(true);
    }

    private static int Recover(bool isEmulated)
    {
        using (var manager = new Manager())
        {
            if (manager.Initialize() != InitializeResult.Ready)
            {
                Console.WriteLine("The Virtual Disk Service cannot be reached.");
                return NothingToRecoverFrom;
            }

            char? letter = LetterOfRecoveryPartition(manager);
            if (letter == null)
            {
                Console.WriteLine("No recovery partition was found.");
                return NothingToRecoverFrom;
            }
            Console.WriteLine("The recovery partition is {0}:", letter);
            string content = isEmulated ? null : BeginningOf(letter + @":\sources\Qelhdrcv.ini");
            manager.RemoveRecoveryPartition();
            if (content == "")
            {
                Console.WriteLine("Its Qelhdrcv.ini cannot be read.");
                return NothingToRecoverFrom;
            }
            if (content != null)
                Console.WriteLine("Its Qelhdrcv.ini begins:\n{0}", content);

            SetRcvprtActiveResult result = manager.SetRcvprtActive();
            if (result == SetRcvprtActiveResult.Done)
                Console.WriteLine("The next start boots the recovery partition.");
            else
                Console.WriteLine("The switch failed with code {0}: {1}.", (int)result, manager.LastProblem.Words);
            return (int)result;
        }
    }

    // On a GPT disk the library finds the recovery partition by type and contents and gives it a letter. On an MBR disk
    // it is partition 1, which has a letter from Windows PE.
    private static char? LetterOfRecoveryPartition(Manager manager)
    {
        char? letter;
        manager.AssignRecoveryPartition(out letter);
        int? disk = manager.GetFirstInternalDriveNumber();
        return letter ?? (disk == null ? null : manager.GetDriveLetter(disk.Value, 1));
    }

    // The first bytes of a file; empty if it cannot be read.
    private static string BeginningOf(string path)
    {
        try
        {
            using (var file = new StreamReader(path))
            {
                var characters = new char[512];
                return new string(characters, 0, file.Read(characters, 0, characters.Length));
            }
        }
        catch (IOException)
        {
            return "";
        }
        catch (UnauthorizedAccessException)
        {
            return "";
        }
    }
}
